// Walks a saved form next to the declarations of its parameters.
//
// The rules follow the reader (param_line.cpp): what it takes from an element is known, everything
// else in the element is a mistake.
#include "corvanta/params/saved_form.h"

#include "base/nearest_name.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

using namespace Qt::StringLiterals;

namespace corvanta {

using Type = ParameterInfo::Type;

namespace {

constexpr auto kString = "s"_L1; // an element of a string list

bool isChoice(const ParameterInfo &info, qint64 number)
{
    // A default that is not a choice means "not chosen", and may be written out.
    return (number >= 0 && number < info.choices.size()) ||
           QString::number(number) == info.defaultValue;
}

bool isAllowedInteger(const ParameterInfo &info, const QString &text)
{
    bool isNumber = false;
    const qint64 number = text.trimmed().toLongLong(&isNumber);
    const bool fitsChoices =
        info.choices.isEmpty() || info.takesOtherNumbers || isChoice(info, number);
    return isNumber && number >= info.low && number <= info.high && fitsChoices;
}

/// Bounds that are those of the type are not mentioned: no user exceeds them by mistake.
QString rangeOf(const ParameterInfo &info)
{
    const bool hasLow = info.low > std::numeric_limits<int>::min();
    const bool hasHigh = info.high < std::numeric_limits<int>::max();
    if (hasLow && hasHigh) {
        return QCoreApplication::translate("Problems", "a whole number from %1 to %2")
            .arg(QString::number(info.low), QString::number(info.high));
    }
    return hasLow ? QCoreApplication::translate("Problems", "a whole number from %1").arg(info.low)
                  : QCoreApplication::translate("Problems", "a whole number");
}

QString listOf(const QStringList &choices)
{
    QStringList numbered;
    for (qsizetype i = 0; i < choices.size(); ++i) {
        numbered << u"%1 (%2)"_s.arg(QString::number(i), choices[i]);
    }
    return numbered.join(", "_L1);
}

/// What the action does with the wrong value `text`.
QString effectOf(const ParameterInfo &info, const QString &text)
{
    const auto *const units = reinterpret_cast<const char16_t *>(text.utf16());
    switch (info.type) {
    case Type::Flag:
        return u"uses %1"_s.arg(static_cast<int>(xmltob(units, 0)));
    case Type::Real:
        return u"uses %1"_s.arg(xmltof(units, 0));
    case Type::Integer: {
        const qint64 used = qBound(info.low, static_cast<qint64>(xmltol(units, 0)), info.high);
        if (info.choices.isEmpty() || isChoice(info, used)) {
            return u"uses %1"_s.arg(used);
        }
        break;
    }
    default:
        break;
    }
    return info.otherwise.isEmpty() ? u"uses it as it is"_s : info.otherwise;
}

/// The walk; one object per saved form.
class Walk
{
public:
    explicit Walk(const GlobalParameters *global)
        : m_global(global)
    {
    }

    /// `infos` are all parameters that are read from `element`.
    void visit(const XMLNode &element, const QVector<ParameterInfo> &infos);
    QVector<SavedFormProblem> take() { return std::move(m_problems); }

private:
    /// What an element may hold: its own parameters, and those of an inline form.
    struct Known
    {
        QVector<ParameterInfo> infos;
        QVector<ParameterInfo> unused; ///< of the form that the element does not have
        QString whyUnused;

        KnownNames names() const;
    };

    static Known knownIn(const XMLNode &element, const QVector<ParameterInfo> &infos);
    void visitAttributes(const XMLNode &element, const Known &known);
    void visitChildren(const XMLNode &element, const Known &known);
    void visitChild(const XMLNode &child, const ParameterInfo &info);
    void visitWrapper(const XMLNode &wrapper, const ParameterInfo &info);
    void visitText(const XMLNode &element, const QVector<ParameterInfo> &infos);
    void visitStrings(const XMLNode &list, const ParameterInfo &info);
    void visitString(const XMLNode &string, const ParameterInfo &info);
    void expectNothingIn(const XMLNode &element);
    void expectNoText(const XMLNode &element, const QString &remedy);
    void checkValue(const XMLNode &element, const ParameterInfo &info, const QString &text);
    void checkExpansion(const XMLNode &element, const ParameterInfo &info, const QString &text);
    void add(const XMLNode &element, const QString &text)
    {
        m_problems.append({element.line(), text, SavedFormProblem::Kind::Mistake});
    }
    void addUnknown(const XMLNode &element, const QString &what, const QString &name,
                    const QString &parent, const QStringList &known)
    {
        add(element,
            u"unknown %1 '%2' of '%3'%4"_s.arg(what, name, parent, nearestNameHint(name, known)));
    }

    /// In `parent`, whose elements all have the name `item`.
    void addUnknownItem(const XMLNode &child, const XMLNode &parent, const QString &item)
    {
        add(child, u"unknown element '%1' of '%2'; the only known name is '%3'"_s.arg(
                       child.getName(), parent.getName(), item));
    }
    void addUnknownAttribute(const XMLNode &element, const QString &name, const Known &known);

    const GlobalParameters *m_global;
    QVector<SavedFormProblem> m_problems;
};

const ParameterInfo *find(const QVector<ParameterInfo> &infos, ParameterInfo::Place place,
                          const QString &name)
{
    const auto isIt = [&](const auto &info) { return info.place == place && info.name == name; };
    const auto found = std::ranges::find_if(infos, isIt);
    return found == infos.end() ? nullptr : &*found;
}

KnownNames Walk::Known::names() const
{
    // A misspelled name may be meant for either form.
    KnownNames names = knownNames(infos + unused);
    names.attributes << u"version"_s;
    return names;
}

/// The parameters of the form that the element has: with or without the elements of a structure
/// that may be inline.
Walk::Known Walk::knownIn(const XMLNode &element, const QVector<ParameterInfo> &infos)
{
    Known known;
    for (const ParameterInfo &info : infos) {
        if (!info.hasInlineForm) {
            known.infos << info;
        } else if (element.getChildNode(0).getName() == info.itemElement) {
            known.infos << info;
            known.unused = info.members;
            known.whyUnused = u"there are '%1' elements"_s.arg(info.itemElement);
        } else {
            known.infos << info.members;
            known.unused << info;
            known.whyUnused = u"the first element is not a '%1'"_s.arg(info.itemElement);
        }
    }
    return known;
}

void Walk::visit(const XMLNode &element, const QVector<ParameterInfo> &infos)
{
    const Known known = knownIn(element, infos);
    visitAttributes(element, known);
    visitText(element, known.infos);
    visitChildren(element, known);
}

/// Every element may have the version of the program that saved it.
void Walk::visitAttributes(const XMLNode &element, const Known &known)
{
    ParameterInfo version;
    version.name = u"version"_s;
    version.type = Type::Real;
    for (const QString &name : element.attributeNames()) {
        const QString text =
            QStringView(element.getAttribute(name.toLatin1().constData())).toString();
        if (const auto *const info = find(known.infos, ParameterInfo::Place::Attribute, name)) {
            checkValue(element, *info, text);
        } else if (name == version.name) {
            checkValue(element, version, text);
        } else if (find(known.unused, ParameterInfo::Place::Attribute, name) != nullptr) {
            add(element, u"the attribute '%1' of '%2' is not used, because %3"_s.arg(
                             name, element.getName(), known.whyUnused));
        } else {
            addUnknownAttribute(element, name, known);
        }
    }
}

/// A list is often written as an attribute; the nearest attribute would mislead then.
void Walk::addUnknownAttribute(const XMLNode &element, const QString &name, const Known &known)
{
    const KnownNames names = known.names();
    const auto nearest =
        std::find_if(names.elements.begin(), names.elements.end(), [&](const QString &one) {
            return one.compare(name, Qt::CaseInsensitive) == 0;
        });
    if (nearest == names.elements.end()) {
        addUnknown(element, u"attribute"_s, name, element.getName(), names.attributes);
    } else {
        add(element, u"unknown attribute '%1' of '%2'; '%3' is an element in '%2'"_s.arg(
                         name, element.getName(), *nearest));
    }
}

void Walk::visitChildren(const XMLNode &element, const Known &known)
{
    std::unordered_set<QString> seen;
    for (int i = 0; i < element.nChildNode(); ++i) {
        const XMLNode child = element.getChildNode(i);
        const QString name = child.getName();
        const ParameterInfo *const info = find(known.infos, ParameterInfo::Place::Element, name);
        if (info == nullptr) {
            const bool isContent = name == kString && known.names().elements.contains(kString);
            const bool isUnused =
                find(known.unused, ParameterInfo::Place::Element, name) != nullptr;
            if (isUnused) {
                add(child, u"the element '%1' of '%2' is not used, because %3"_s.arg(
                               name, element.getName(), known.whyUnused));
            } else if (!isContent) { // visitText() has visited the strings of the content
                addUnknown(child, u"element"_s, name, element.getName(), known.names().elements);
            }
            continue;
        }
        // Only a structure without a wrapper has several elements of one name.
        if (seen.contains(name) && info->itemElement != name) {
            add(child,
                u"the element '%1' of '%2' occurs more than once; only the first is used"_s.arg(
                    name, element.getName()));
        }
        seen.insert(name);
        visitChild(child, *info);
    }
}

void Walk::visitChild(const XMLNode &child, const ParameterInfo &info)
{
    if (info.type == Type::Structure) {
        info.itemElement == info.name ? visit(child, info.members) : visitWrapper(child, info);
    } else if (info.type == Type::Strings) {
        for (const QString &name : child.attributeNames()) {
            addUnknown(child, u"attribute"_s, name, child.getName(), {});
        }
        expectNoText(child, u"each text needs an element of its own, <s>TEXT</s>"_s);
        visitStrings(child, info);
    } else {
        visitString(child, info);
    }
}

/// A wrapper has no values of its own, only items.
void Walk::visitWrapper(const XMLNode &wrapper, const ParameterInfo &info)
{
    for (const QString &name : wrapper.attributeNames()) {
        addUnknown(wrapper, u"attribute"_s, name, wrapper.getName(), {});
    }
    expectNoText(wrapper, u"it holds '%1' elements"_s.arg(info.itemElement));
    for (int i = 0; i < wrapper.nChildNode(); ++i) {
        const XMLNode child = wrapper.getChildNode(i);
        if (child.getName() == info.itemElement) {
            visit(child, info.members);
        } else {
            addUnknownItem(child, wrapper, info.itemElement);
        }
    }
}

/// The text directly in an element: the value of its content, or a mistake.
void Walk::visitText(const XMLNode &element, const QVector<ParameterInfo> &infos)
{
    const auto content = std::find_if(infos.begin(), infos.end(), [](const ParameterInfo &info) {
        return info.place == ParameterInfo::Place::Content;
    });
    const bool isValue = std::any_of(infos.begin(), infos.end(),
                                     [](const ParameterInfo &info) { return info.isAlsoOwnText; });
    if (content == infos.end()) {
        if (!isValue) {
            expectNoText(element, QString());
        }
    } else if (content->type == Type::Strings) {
        expectNoText(element, u"each text needs an element of its own, <s>TEXT</s>"_s);
        visitStrings(element, *content);
    } else {
        checkValue(element, *content, element.text());
    }
}

/// The strings in `list`; its other children are reported unless `list` holds more than the list.
void Walk::visitStrings(const XMLNode &list, const ParameterInfo &info)
{
    for (int i = 0; i < list.nChildNode(); ++i) {
        const XMLNode child = list.getChildNode(i);
        if (child.getName() == kString) {
            visitString(child, info);
        } else if (info.place == ParameterInfo::Place::Element) {
            addUnknownItem(child, list, kString);
        }
    }
}

/// An element that holds one text.
void Walk::visitString(const XMLNode &string, const ParameterInfo &info)
{
    expectNothingIn(string);
    checkExpansion(string, info, string.text());
}

void Walk::expectNothingIn(const XMLNode &element)
{
    for (const QString &name : element.attributeNames()) {
        addUnknown(element, u"attribute"_s, name, element.getName(), {});
    }
    for (int i = 0; i < element.nChildNode(); ++i) {
        const XMLNode child = element.getChildNode(i);
        addUnknown(child, u"element"_s, child.getName(), element.getName(), {});
    }
}

void Walk::expectNoText(const XMLNode &element, const QString &remedy)
{
    const QString text = element.text().simplified();
    if (!text.isEmpty()) {
        const QString reason = remedy.isEmpty() ? QString() : ": "_L1 + remedy;
        add(element, u"the text '%1' in '%2' is not used%3"_s.arg(text.left(100), element.getName(),
                                                                  reason));
    }
}

void Walk::checkValue(const XMLNode &element, const ParameterInfo &info, const QString &text)
{
    const bool isExpanded = info.isExpanded && m_global != nullptr;
    QStringList unknown; // reported for the graph; the value is then not known
    const QString value = isExpanded ? m_global->expandString(text, &unknown) : text;
    if (!unknown.isEmpty()) {
        return;
    }
    if (!isAllowedValue(info, value)) {
        add(element, u"the value '%1' of '%2' is not allowed; allowed: %3; the action %4"_s.arg(
                         value.left(100), info.name, allowedValues(info), effectOf(info, value)));
    } else {
        checkExpansion(element, info, text);
    }
}

/// A reference to a variable where none is replaced is probably a mistake, but a valid text.
void Walk::checkExpansion(const XMLNode &element, const ParameterInfo &info, const QString &text)
{
    if (info.isExpanded || info.file != ParameterInfo::File::None || m_global == nullptr) {
        return;
    }
    // An unknown name makes the graph invalid and is reported for every text alike. A variable
    // whose value is its own text is how a literal "${" is written.
    if (m_global->expandString(text) != text) {
        m_problems.append(
            {element.line(),
             u"the variable in '%1' of '%2' is not replaced: '%3' is used literally"_s.arg(
                 info.name, element.getName(), text.left(100)),
             SavedFormProblem::Kind::NotExpanded});
    }
}

} // namespace

bool isAllowedValue(const ParameterInfo &info, const QString &text)
{
    switch (info.type) {
    case Type::Flag: {
        const QString lower = text.trimmed().toLower();
        return QStringList{u"0"_s, u"1"_s, u"false"_s, u"true"_s, u"no"_s, u"yes"_s}.contains(
            lower);
    }
    case Type::Integer:
        return isAllowedInteger(info, text);
    case Type::Real: {
        bool isNumber = false;
        const double number = text.trimmed().toDouble(&isNumber);
        return isNumber && std::isfinite(number);
    }
    case Type::Text:
        return !info.isNumberText || isAllowedInteger(info, text);
    case Type::Strings:
    case Type::Structure:
        break;
    }
    return true;
}

QString allowedValues(const ParameterInfo &info)
{
    switch (info.type) {
    case Type::Flag:
        return u"0, 1"_s;
    case Type::Real:
        return QCoreApplication::translate("Problems", "a decimal number");
    case Type::Integer:
        return info.choices.isEmpty() ? rangeOf(info) : listOf(info.choices);
    case Type::Text:
        return info.isNumberText ? rangeOf(info)
                                 : QCoreApplication::translate("Problems", "any text");
    case Type::Strings:
        return QCoreApplication::translate("Problems", "texts");
    case Type::Structure:
        break;
    }
    return QCoreApplication::translate("Problems", "XML elements '%1'").arg(info.itemElement);
}

QVector<SavedFormProblem> savedFormProblems(const XMLNode &element,
                                            const QVector<ParameterInfo> &infos,
                                            const GlobalParameters *global)
{
    Walk walk(global);
    walk.visit(element, infos);
    return walk.take();
}

} // namespace corvanta
