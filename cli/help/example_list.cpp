// Reads the examples of actions, and takes single elements and values from them.
//
//   # Title                      one line
//   <TYPE name='value'>          the element, until the next title
//     <List><s>text</s></List>
//   </TYPE>
//
// Elements are copied as they are written, because their layout is part of the example.
#include "cli/help/example_list.h"

#include <QFile>
#include <QMap>
#include <QXmlStreamReader>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// An element of the examples, with its place in their text.
struct Found
{
    QStringView whole; ///< with its tags
    QStringView inner; ///< between the tags; null for an empty element
};

/// Accepts elements by their attributes.
using Condition = std::function<bool(const QXmlStreamAttributes &)>;

/// The element at whose start tag `reader` is. Moves `reader` to its end tag.
Found elementAt(QXmlStreamReader *reader, const QString &text)
{
    const qsizetype innerBegin = reader->characterOffset();
    const qsizetype begin = text.lastIndexOf(u'<', innerBegin - 1);
    reader->skipCurrentElement();
    const qsizetype end = reader->characterOffset();
    const qsizetype innerEnd = text.lastIndexOf(u'<', end - 1);
    const QStringView view(text);
    return {view.sliced(begin, end - begin),
            innerEnd > innerBegin ? view.sliced(innerBegin, innerEnd - innerBegin) : QStringView()};
}

/// The elements of that name that `accepts` accepts, in order, also those inside others.
QVector<Found> findElements(const QString &text, const QString &name, const Condition &accepts)
{
    QVector<Found> found;
    QXmlStreamReader reader(text);
    while (!reader.atEnd()) {
        const bool isStart = reader.readNext() == QXmlStreamReader::StartElement;
        if (isStart && reader.name() == name && accepts(reader.attributes())) {
            found << elementAt(&reader, text);
        }
    }
    return found;
}

bool acceptAll(const QXmlStreamAttributes & /*attributes*/)
{
    return true;
}

/// The lines without the indentation of the last one, which is the end tag.
QString withoutIndentation(QStringView element)
{
    QStringList lines = element.toString().split(u'\n');
    const QString &last = lines.last();
    const auto letter = std::find_if(last.begin(), last.end(), [](QChar c) { return c != u' '; });
    const qsizetype indentation = std::distance(last.begin(), letter);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        lines[i] = lines[i].sliced(qMin(indentation, lines[i].size()));
    }
    return lines.join(u'\n');
}

/// The number that a parameter has in an example: not the default, and allowed.
QString otherNumber(const ParameterInfo &info)
{
    if (!info.choices.isEmpty() || info.type == ParameterInfo::Type::Flag) {
        return info.defaultValue == "0"_L1 ? u"1"_s : u"0"_s;
    }
    constexpr qint64 kSomeNumber = 10;
    const qint64 value = info.defaultValue.toLongLong();
    const qint64 other = value > 0 ? 2 * value : kSomeNumber;
    // Real parameters declare no bounds.
    const bool isBounded = info.type == ParameterInfo::Type::Integer && info.low < info.high;
    const qint64 bounded = isBounded ? qBound(info.low, other, info.high) : other;
    return QString::number(bounded == value ? info.low : bounded);
}

} // namespace

/// The parts of an element that is being made.
struct ExampleWriter::Draft
{
    QString attributes;
    QString content;
    QMap<QString, QString> values; ///< by parameter; "set" for those that are not attributes
};

QVector<Example> examplesOf(const QString &type)
{
    QFile file(u":/corvanta/examples/%1.examples"_s.arg(type));
    QVector<Example> examples;
    if (!file.open(QIODevice::ReadOnly)) {
        return examples;
    }
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (line.startsWith("# "_L1)) {
            examples << Example{line.sliced(2), {}};
        } else if (!examples.isEmpty() && !line.isEmpty()) {
            QString &element = examples.last().element;
            element += (element.isEmpty() ? QString() : u"\n"_s) + line;
        }
    }
    return examples;
}

ExampleWriter::ExampleWriter(QString name, QVector<ParameterInfo> infos,
                             const QVector<Example> &examples)
    : m_name(std::move(name))
    , m_infos(std::move(infos))
{
    for (const Example &example : examples) {
        m_text += example.element + u'\n';
    }
    m_text = u"<examples>\n%1</examples>"_s.arg(m_text);
}

ExampleWriter ExampleWriter::ofItem(const ParameterInfo &structure) const
{
    ExampleWriter writer = *this;
    writer.m_name = structure.itemElement;
    writer.m_infos = structure.members;
    return writer;
}

const ParameterInfo *ExampleWriter::parameter(const QString &name) const
{
    const auto found = std::find_if(m_infos.begin(), m_infos.end(),
                                    [&](const ParameterInfo &info) { return info.name == name; });
    return found == m_infos.end() ? nullptr : &*found;
}

/// The value of an attribute.
QString ExampleWriter::exampleValue(const ParameterInfo &info) const
{
    QString value = info.defaultValue;
    findElements(m_text, m_name, [&](const QXmlStreamAttributes &attributes) {
        if (value == info.defaultValue && attributes.hasAttribute(info.name)) {
            value = attributes.value(info.name).toString();
        }
        return false;
    });
    const bool isText = info.type == ParameterInfo::Type::Text && !info.isNumberText;
    return value == info.defaultValue && !isText ? otherNumber(info) : value;
}

/// An empty `value` is replaced by one of the examples.
void ExampleWriter::add(const ParameterInfo &info, const QString &value, Draft *draft) const
{
    if (info.place == ParameterInfo::Place::Attribute) {
        const QString used = value.isEmpty() ? exampleValue(info) : value;
        draft->values[info.name] = used;
        draft->attributes +=
            u" %1='%2'"_s.arg(info.name, used.toHtmlEscaped().replace(u'\'', "&apos;"_L1));
        return;
    }
    draft->values[info.name] = u"set"_s;
    if (info.place == ParameterInfo::Place::Content) {
        for (const Found &found : findElements(m_text, m_name, acceptAll)) {
            if (!found.inner.trimmed().isEmpty()) {
                draft->content = found.inner.toString();
                return;
            }
        }
    }
    const QVector<Found> found = findElements(m_text, info.name, acceptAll);
    draft->content += found.isEmpty() ? QString() : withoutIndentation(found.first().whole);
}

bool ExampleWriter::holds(const ParameterInfo::Condition &condition, const Draft &draft) const
{
    const ParameterInfo *const info = parameter(condition.parameter);
    const QString value =
        draft.values.value(condition.parameter, info == nullptr ? QString() : info->defaultValue);
    return condition.values.contains(value) != condition.isExcluded ||
           std::any_of(condition.alternatives.begin(), condition.alternatives.end(),
                       [&](const auto &alternative) { return holds(alternative, draft); });
}

void ExampleWriter::satisfy(const ParameterInfo::Condition &condition, Draft *draft) const
{
    const ParameterInfo *const info = parameter(condition.parameter);
    if (info != nullptr && !holds(condition, *draft)) {
        add(*info, condition.isExcluded ? QString() : condition.values.value(0), draft);
    }
}

/// The parameters that an element with those of `draft` needs as well.
ExampleWriter::Draft ExampleWriter::requiredFor(const Draft &draft) const
{
    Draft required{{}, {}, draft.values};
    for (const ParameterInfo &info : m_infos) {
        const bool isUsed =
            std::all_of(info.conditions.begin(), info.conditions.end(),
                        [&](const auto &condition) { return holds(condition, required); });
        if (info.isRequired && isUsed && !required.values.contains(info.name)) {
            add(info, QString(), &required);
        }
    }
    return required;
}

QString ExampleWriter::elementWith(const ParameterInfo &info) const
{
    Draft draft;
    for (const ParameterInfo::Condition &condition : info.conditions) {
        satisfy(condition, &draft);
    }
    add(info, QString(), &draft);
    const Draft required = requiredFor(draft);
    const QString attributes = required.attributes + draft.attributes;
    const QString content = required.content + draft.content;
    return content.isEmpty() ? u"<%1%2/>"_s.arg(m_name, attributes)
                             : u"<%1%2>%3</%1>"_s.arg(m_name, attributes, content);
}

/// The first element of the examples that has this value; or empty.
QString ExampleWriter::elementWithValue(const ParameterInfo &info, const QString &value) const
{
    const auto hasValue = [&](const auto &all) { return all.value(info.name) == value; };
    const QVector<Found> found = findElements(m_text, m_name, hasValue);
    return found.isEmpty() ? QString() : withoutIndentation(found.first().whole);
}

QStringList ExampleWriter::elementsWithChoices(const ParameterInfo &info) const
{
    QStringList elements;
    for (int i = 0; i < info.choices.size(); ++i) {
        elements << elementWithValue(info, QString::number(i));
    }
    return elements;
}
