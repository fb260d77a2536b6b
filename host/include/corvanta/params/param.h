// One line of a parameter table for a struct: a parameter, its name, member, label and meaning.
// param_table.h shows a table.
//
// The functions text(), number(), real(), flag(), strings(), elementText() and choice() make a line
// from a name and a member. The member functions of Param add to it and return it, so that one
// expression declares a parameter. All texts are constants in UTF-8; names of attributes and
// elements are ASCII and must live as long as the table, as string literals do.
#pragma once
#include "corvanta/params/param_line.h"

#include <concepts>
#include <initializer_list>
#include <limits>
#include <type_traits>

namespace corvanta {

/// One line of a table for the struct `P`. The chained functions change a temporary only: a line in
/// a table is constant.
template <class P> class Param : public ParamLine
{
public:
    using ParamLine::ParamLine;

    /// Short text before the field of a form, without a colon.
    Param &&label(const char *text) &&
    {
        m_info.label = QString::fromUtf8(text);
        return std::move(*this);
    }
    /// One or two sentences for users, shown by `corvanta describe` and as a tool tip.
    Param &&meaning(const char *text) &&
    {
        m_info.meaning = QString::fromUtf8(text);
        return std::move(*this);
    }
    /// The text is the name of a file to read. It is saved relative to the graph's folder if it is
    /// below that; the action expands it before use (ActionItem::expandFile).
    Param &&inputFile() &&
    {
        m_info.file = ParameterInfo::File::Input;
        return std::move(*this);
    }
    /// The same for a file to write (ActionItem::expandOutputFile).
    Param &&outputFile() &&
    {
        m_info.file = ParameterInfo::File::Output;
        return std::move(*this);
    }
    /// Save the value also when it equals the default, for parameters that every reader of a graph
    /// file wants to see, such as the file name.
    Param &&always() &&
    {
        m_info.saveAlways = true;
        return std::move(*this);
    }
    /// Bounds of an integer, inclusive. A number outside is read as the nearest bound.
    Param &&range(qint64 low, qint64 high) &&
    {
        m_info.low = low;
        m_info.high = high;
        return std::move(*this);
    }
    /// What the smallest number means instead of an amount, for forms: "no limit".
    Param &&lowMeans(const char *text) &&
    {
        m_info.lowMeaning = QString::fromUtf8(text);
        return std::move(*this);
    }
    /// A text that holds a whole number within these bounds, usually because it may contain
    /// variables. Only checks use the bounds; the action reads the text. Implies expanded().
    Param &&wholeNumber(qint64 low, qint64 high) &&
    {
        m_info.isNumberText = true;
        return std::move(*this).range(low, high).expanded();
    }
    /// The host finds the parameter by this role, whatever its name is. One line per role.
    Param &&role(ParameterInfo::Role role) &&
    {
        m_info.role = role;
        return std::move(*this);
    }
    /// The action replaces `${NAME}` in the value (ActionItem::expandString).
    Param &&expanded() &&
    {
        m_info.isExpanded = true;
        return std::move(*this);
    }
    /// The text of the action's element, which the action reads itself, wins over the attribute.
    Param &&orOwnText() &&
    {
        m_info.isAlsoOwnText = true;
        return std::move(*this);
    }
    /// What the action does with a value that is not allowed, for messages: "appends". Without it
    /// the message names the value that reading gives.
    Param &&otherwise(const char *effect) &&
    {
        m_info.otherwise = QString::fromUtf8(effect);
        return std::move(*this);
    }
    /// The same for a choice of which all other numbers are allowed.
    Param &&orAnyNumber(const char *effect) &&
    {
        m_info.takesOtherNumbers = true;
        return std::move(*this).otherwise(effect);
    }
    /// The value must not be empty.
    Param &&required() &&
    {
        m_info.isRequired = true;
        return std::move(*this);
    }
    /// The value must not be empty when `parameter` has one of `values`, written as they are saved;
    /// otherwise it is not used.
    Param &&requiredWhen(const char *parameter, const QStringList &values) &&
    {
        return std::move(*this).required().onlyWhen(parameter, values);
    }
    /// The action uses the value only when `parameter` has one of `values`, written as they are
    /// saved. Several conditions must all hold.
    Param &&onlyWhen(const char *parameter, const QStringList &values) &&
    {
        m_info.conditions.append({QString::fromLatin1(parameter), values});
        return std::move(*this);
    }
    /// Weakens the condition before it: the value is also used when `parameter` has one of
    /// `values`.
    Param &&orWhen(const char *parameter, const QStringList &values) &&
    {
        m_info.conditions.last().alternatives.append({QString::fromLatin1(parameter), values});
        return std::move(*this);
    }
    /// As orWhen(), when `parameter` has none of `values`.
    Param &&orUnless(const char *parameter, const QStringList &values) &&
    {
        m_info.conditions.last().alternatives.append(
            {QString::fromLatin1(parameter), values, true});
        return std::move(*this);
    }
    /// As onlyWhen(), when `parameter` has none of `values`.
    Param &&ignoredWhen(const char *parameter, const QStringList &values) &&
    {
        m_info.conditions.append({QString::fromLatin1(parameter), values, true});
        return std::move(*this);
    }
    /// Unit of a number, for forms: "MB", "seconds".
    Param &&unit(const char *text) &&
    {
        m_info.unit = QString::fromUtf8(text);
        return std::move(*this);
    }
    /// Texts of the numbers 0, 1, 2, ... of an integer, and a sentence about each; see choice().
    Param &&choices(const QStringList &texts, const QStringList &explanations = {}) &&
    {
        m_info.choices = texts;
        m_info.explanations = explanations;
        return std::move(*this);
    }
    /// Where the value is saved; an attribute unless set. content() and elementText() use it.
    Param &&at(ParameterInfo::Place place) &&
    {
        m_info.place = place;
        return std::move(*this);
    }
    /// The child elements are inside an element of this name, which is also the parameter's name.
    Param &&inside(const char *element) &&
    {
        m_wrapper = element;
        m_info.name = QString::fromLatin1(element);
        return std::move(*this);
    }
    /// Without such a child element, the parent is itself the only item; see ParameterInfo.
    Param &&withInlineForm() &&
    {
        m_info.hasInlineForm = true;
        return std::move(*this);
    }
    /// Indent of the child elements per depth, two blanks unless set.
    Param &&indentedBy(const char *unit) &&
    {
        m_indentUnit = unit;
        return std::move(*this);
    }
};

/// Access to a member of `P`. Its type `T` converts to and from `V`, one of the types of
/// ParamValue; the value must be in the range of `T`, which range() ensures for numbers.
template <class V, class P, class T> ValueAccess accessTo(T P::*member)
{
    return {[member](const void *params) -> ParamValue {
                return static_cast<V>(static_cast<const P *>(params)->*member);
            },
            [member](void *params, const ParamValue &value) {
                static_cast<P *>(params)->*member = static_cast<T>(std::get<V>(value));
            }};
}

/// A text, saved as an attribute. Line feeds and tabs in it are kept.
template <class P> Param<P> text(const char *name, QString P::*member)
{
    return {name, ParameterInfo::Type::Text, accessTo<QString>(member)};
}
/// An integer. Its range is that of the member's type unless range() is given.
template <class P> Param<P> number(const char *name, int P::*member)
{
    return {name, ParameterInfo::Type::Integer, accessTo<qint64>(member)};
}
template <class P> Param<P> number(const char *name, qint64 P::*member)
{
    return Param<P>(name, ParameterInfo::Type::Integer, accessTo<qint64>(member))
        .range(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
}
/// A decimal number. It is saved with the fewest digits that give the same value again.
template <class P> Param<P> real(const char *name, double P::*member)
{
    return {name, ParameterInfo::Type::Real, accessTo<double>(member)};
}
/// A truth value, saved as "1" or "0"; see xmltob() for the texts that are read.
template <class P> Param<P> flag(const char *name, bool P::*member)
{
    return {name, ParameterInfo::Type::Flag, accessTo<bool>(member)};
}
/// A string list: one child element of that name.
template <class P> Param<P> strings(const char *name, QStringList P::*member)
{
    return {name, ParameterInfo::Type::Strings, accessTo<QStringList>(member)};
}
/// A text that is the content of the child element of that name. An empty element is an empty text.
template <class P> Param<P> elementText(const char *name, QString P::*member)
{
    return text(name, member).at(ParameterInfo::Place::Element);
}

/// A value of a choice, saved as its number, its text, and a sentence for users who need more than
/// the text.
template <class E> struct Choice
{
    E value;
    const char *text;
    const char *explanation = "";
};

/// The texts of choices with the values 0, 1, 2, ... in order.
template <class E> QStringList textsOf(std::initializer_list<Choice<E>> choices)
{
    QStringList texts;
    for (const Choice<E> &choice : choices) {
        Q_ASSERT(static_cast<qsizetype>(choice.value) == texts.size());
        texts << QString::fromUtf8(choice.text);
    }
    return texts;
}

/// The explanations in the same order; none if all are empty.
template <class E> QStringList explanationsOf(std::initializer_list<Choice<E>> choices)
{
    QStringList explanations;
    for (const Choice<E> &choice : choices) {
        explanations << QString::fromUtf8(choice.explanation);
    }
    return explanations.join(QString()).isEmpty() ? QStringList() : explanations;
}

/// One of several values. The choices are the numbers 0, 1, 2, ... in order. Any other number is
/// kept as it is, so that the action decides what it means; limit it with range().
template <class P, class E>
Param<P> choice(const char *name, E P::*member,
                std::initializer_list<Choice<std::type_identity_t<E>>> choices)
{
    static_assert(std::is_same_v<std::underlying_type_t<E>, int>);
    return Param<P>(name, ParameterInfo::Type::Integer, accessTo<qint64>(member))
        .choices(textsOf(choices), explanationsOf(choices));
}
/// The same for a member of a base of `P`.
template <class P, class Base, class E>
requires(std::derived_from<P, Base> && !std::same_as<P, Base>) Param<P> choice(
    const char *name, E Base::*member,
    std::initializer_list<Choice<std::type_identity_t<E>>> choices)
{
    return choice(name, static_cast<E P::*>(member), choices);
}

} // namespace corvanta
