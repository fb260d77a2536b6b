// Reads and saves parameter lines, and converts their values to and from text.
//
// A saved action, with every place where a value can be:
//
//     <type version='1' attribute='value'>       attributes, in the order of the table
//       <name>element text</name>                a text or a string list as an element
//       <Wrapper>                                a structure inside an element
//         <Item attribute='value'>content</Item>
//       </Wrapper>
//     </type>
//
// Reading accepts any text, because saved graphs may have been edited by hand.
#include "corvanta/params/param_line.h"

#include "base/mapped.h"

#include <QLocale>

#include <algorithm>
#include <limits>
#include <ostream>
#include <sstream>

namespace corvanta {

using Type = ParameterInfo::Type;

namespace {

// The text of a value as it is saved; one function per alternative of ParamValue.

QString textOf(const QString &value)
{
    return value;
}
QString textOf(qint64 value)
{
    return QString::number(value);
}
QString textOf(double value)
{
    // The shortest text that gives the same value again, in the C locale.
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}
QString textOf(bool value)
{
    return QString(QLatin1Char(value ? '1' : '0'));
}
QString textOf(const QStringList &value)
{
    return value.join(QLatin1Char('\n'));
}

/// The inverse of textOf() for a list. Splitting an empty text would give one empty string.
QStringList linesOf(const QString &text)
{
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}

/// Stricter than reading: a value that a user gives for a number must be one as a whole.
bool isOfType(Type type, const QString &text)
{
    bool isNumber = true;
    if (type == Type::Integer || type == Type::Flag) {
        text.toLongLong(&isNumber);
    } else if (type == Type::Real) {
        text.toDouble(&isNumber);
    }
    return isNumber;
}

} // namespace

std::wostream &operator<<(std::wostream &out, const Indent &indent)
{
    for (int i = 0; i < indent.depth; ++i) {
        out << indent.unit;
    }
    return out;
}

ParamLine::ParamLine(const char *name, Type type, ValueAccess access)
    : m_name(name)
    , m_value(std::move(access))
{
    m_info.name = QString::fromLatin1(name);
    m_info.type = type;
    m_info.place =
        type == Type::Strings ? ParameterInfo::Place::Element : ParameterInfo::Place::Attribute;
    // The range of int, which most members have. A number outside would change its value in the
    // conversion to the member.
    m_info.low = std::numeric_limits<int>::min();
    m_info.high = std::numeric_limits<int>::max();
}

ParamLine::ParamLine(const char *element, ChildAccess access)
    : m_name(element)
    , m_children(std::move(access))
{
    m_info.name = QString::fromLatin1(element);
    m_info.itemElement = m_info.name;
    m_info.type = Type::Structure;
    m_info.place = ParameterInfo::Place::Element;
}

ParameterInfo ParamLine::info(const void *defaults) const
{
    ParameterInfo info = m_info;
    info.defaultValue = valueText(defaults);
    // Line feeds in attributes are possible but unusual; texts in elements are documents or lists.
    info.isMultiLine = info.type == Type::Text && info.place != ParameterInfo::Place::Attribute;
    if (isStructure()) {
        info.members = m_children.members();
    }
    return info;
}

QString ParamLine::valueText(const void *params) const
{
    if (!isStructure()) {
        return std::visit([](const auto &value) { return textOf(value); }, m_value.get(params));
    }
    std::wostringstream out;
    out.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
    // The default is the empty text, as it is saved.
    if (!m_children.isDefault(params)) {
        saveStructure(params, out, Indent());
    }
    return QString::fromStdWString(out.str());
}

bool ParamLine::setValueText(void *params, const QString &text) const
{
    if (isStructure()) {
        // The text holds the elements without their parent, so give them one.
        const auto parent = XMLNode::parse("<p>" + text.toUtf8() + "</p>");
        if (parent) {
            read(params, *parent);
        }
        return static_cast<bool>(parent);
    }
    if (!isOfType(m_info.type, text)) {
        return false;
    }
    if (isList()) {
        m_value.set(params, linesOf(text));
    } else {
        readText(params, reinterpret_cast<const char16_t *>(text.utf16()));
    }
    return true;
}

void ParamLine::read(void *params, const XMLNode &node) const
{
    if (isStructure()) {
        // Without the wrapper the node is empty and gives an empty list.
        m_children.read(params, m_wrapper == nullptr ? node : node.getChildNode(m_wrapper), m_name);
    } else if (isContent()) {
        readElement(params, node);
    } else if (!isAttribute()) {
        readElement(params, node.getChildNode(m_name));
    } else if (const char16_t *text = node.getAttribute(m_name)) {
        readText(params, text);
    }
}

/// Reads the content of an element. An absent element leaves the value as it is.
void ParamLine::readElement(void *params, const XMLNode &element) const
{
    if (!element.isEmpty()) {
        m_value.set(params, isList() ? ParamValue(fromXMLSL(element)) : ParamValue(element.text()));
    }
}

/// Reads a single text, from an attribute or from the user.
void ParamLine::readText(void *params, const char16_t *text) const
{
    switch (m_info.type) {
    case Type::Text:
        m_value.set(params, QStringView(text).toString());
        break;
    case Type::Integer:
        m_value.set(params, qBound(m_info.low, static_cast<qint64>(xmltol(text, 0)), m_info.high));
        break;
    case Type::Real:
        m_value.set(params, xmltof(text, 0));
        break;
    case Type::Flag:
        m_value.set(params, xmltob(text, 0) != 0);
        break;
    case Type::Strings:
    case Type::Structure:
        break; // not saved as a single text
    }
}

void ParamLine::save(const void *params, const void *defaults, std::wostream &out, Indent indent,
                     const GlobalParameters *global) const
{
    if (isStructure()) {
        if (!m_children.isDefault(params)) {
            saveStructure(params, out, indent);
        }
    } else if (isContent()) {
        // Not compared with the default: the element exists, so it must have its content.
        saveContent(params, out);
    } else if (m_info.saveAlways || m_value.get(params) != m_value.get(defaults)) {
        isAttribute() ? saveAttribute(params, out, global) : saveElement(params, out, indent);
    }
}

void ParamLine::saveAttribute(const void *params, std::wostream &out,
                              const GlobalParameters *global) const
{
    QString value = valueText(params);
    // A name relative to the graph makes the folder of the graph portable.
    if (m_info.file != ParameterInfo::File::None && global != nullptr) {
        value = global->contractFile(value);
    }
    ToXMLStringTool tool;
    out << L' ' << m_name << L"='" << tool.toXML(value) << L'\'';
}

void ParamLine::saveElement(const void *params, std::wostream &out, Indent indent) const
{
    out << indent << L'<' << m_name << L'>';
    saveContent(params, out);
    out << L"</" << m_name << L">\n";
}

void ParamLine::saveContent(const void *params, std::wostream &out) const
{
    if (isList()) {
        toXML(std::get<QStringList>(m_value.get(params)), out);
    } else {
        ToXMLStringTool tool;
        out << tool.toXML(valueText(params));
    }
}

/// Writes the elements, inside their wrapper if there is one.
void ParamLine::saveStructure(const void *params, std::wostream &out, Indent indent) const
{
    indent.unit = m_indentUnit != nullptr ? m_indentUnit : indent.unit;
    if (m_wrapper == nullptr) {
        m_children.save(params, out, m_name, indent);
        return;
    }
    out << indent << L'<' << m_wrapper << L">\n";
    m_children.save(params, out, m_name, indent.deeper());
    out << indent << L"</" << m_wrapper << L">\n";
}

ParamLines::ParamLines(std::vector<ParamLine> lines)
    : m_lines(std::move(lines))
{
}

QVector<ParameterInfo> ParamLines::infos(const void *defaults) const
{
    return mapped<QVector<ParameterInfo>>(
        m_lines, [&](const ParamLine &line) { return line.info(defaults); });
}

void ParamLines::read(void *params, const XMLNode &node) const
{
    for (const ParamLine &line : m_lines) {
        line.read(params, node);
    }
}

void ParamLines::saveAttributes(const void *params, const void *defaults, std::wostream &out,
                                const GlobalParameters *global) const
{
    // Two passes over the lines: attributes are saved first, wherever they are in the table.
    for (const ParamLine &line : m_lines) {
        if (line.isAttribute()) {
            line.save(params, defaults, out, Indent(), global);
        }
    }
}

void ParamLines::saveChildren(const void *params, const void *defaults, std::wostream &out,
                              Indent indent) const
{
    for (const ParamLine &line : m_lines) {
        if (!line.isAttribute()) {
            line.save(params, defaults, out, indent, nullptr);
        }
    }
}

void ParamLines::saveAction(const void *params, const void *defaults, std::wostream &out,
                            const QString &element, const GlobalParameters *global) const
{
    saveAttributes(params, defaults, out, global);
    // Whether there are children decides how the start tag ends, so write them aside first.
    std::wostringstream children;
    children.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
    saveChildren(params, defaults, children, Indent());
    if (children.str().empty()) {
        out << L"/>\n";
    } else {
        out << L">\n" << children.str() << L"</" << element.toStdWString() << L">\n";
    }
}

/// The first line that is not an attribute determines the form of the element, also when its value
/// is not saved: the form of an element never depends on values.
ParamLines::End ParamLines::end() const
{
    const auto child = std::ranges::find(m_lines, false, &ParamLine::isAttribute);
    if (child == m_lines.end()) {
        return End::Empty;
    }
    return child->isContent() ? End::Content : End::Children;
}

void ParamLines::saveChild(const void *params, const void *defaults, std::wostream &out,
                           const char *element, Indent indent) const
{
    out << indent << L'<' << element;
    saveAttributes(params, defaults, out, nullptr);
    const End end = this->end();
    if (end == End::Empty) {
        out << L"/>\n";
        return;
    }
    // Content must not get line feeds or spaces around it: they would be part of the value.
    out << (end == End::Content ? L">" : L">\n");
    saveChildren(params, defaults, out, indent.deeper());
    if (end == End::Children) {
        out << indent;
    }
    out << L"</" << element << L">\n";
}

} // namespace corvanta
