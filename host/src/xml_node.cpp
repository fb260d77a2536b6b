#include "corvanta/xml_node.h"

#include <QVector>
#include <QXmlStreamReader>

#include <limits>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

struct XMLNode::Data
{
    QString name;
    QVector<std::pair<QString, QString>> attributes;
    std::vector<XMLNode> children;
    QStringList texts;
    int line = 0;
};

namespace {

constexpr int kDeepest = 1000;

const char16_t *units(const QString &text)
{
    return reinterpret_cast<const char16_t *>(text.utf16());
}

} // namespace

/// Builds the tree with a stack of its own, so that the document does not decide the depth of
/// calls.
class XMLNodeBuilder
{
public:
    explicit XMLNodeBuilder(const QByteArray &document)
        : m_reader(document)
    {
    }

    XMLNode build(XMLNode::Error *error)
    {
        while (!m_reader.atEnd()) {
            take(m_reader.readNext());
        }
        if (!m_reader.hasError()) {
            return m_root;
        }
        *error = {m_reader.errorString(), m_reader.lineNumber(), m_reader.columnNumber()};
        return {};
    }

private:
    void take(QXmlStreamReader::TokenType token)
    {
        switch (token) {
        case QXmlStreamReader::StartElement:
            open();
            break;
        case QXmlStreamReader::EndElement:
            close();
            break;
        case QXmlStreamReader::Characters:
            addText(m_reader.text());
            break;
        default:
            break;
        }
    }

    void open()
    {
        if (m_open.size() == kDeepest) {
            m_reader.raiseError(u"elements are nested too deeply"_s);
            return;
        }
        auto node = std::make_shared<XMLNode::Data>();
        node->name = m_reader.qualifiedName().toString();
        node->line = static_cast<int>(m_reader.lineNumber());
        for (const QXmlStreamAttribute &attribute : m_reader.attributes()) {
            node->attributes.append(
                {attribute.qualifiedName().toString(), attribute.value().toString()});
        }
        m_open.push_back(std::move(node));
        m_continueText = false;
    }

    void close()
    {
        XMLNode node;
        node.m_data = std::move(m_open.back());
        m_open.pop_back();
        m_continueText = false;
        if (m_open.empty()) {
            m_root = node;
        } else {
            m_open.back()->children.push_back(std::move(node));
        }
    }

    void addText(QStringView text)
    {
        if (m_open.empty()) {
            return;
        }
        QStringList &texts = m_open.back()->texts;
        if (m_continueText) {
            texts.back() += text;
        } else {
            texts.append(text.toString());
        }
        m_continueText = true;
    }

    QXmlStreamReader m_reader;
    std::vector<std::shared_ptr<XMLNode::Data>> m_open;
    XMLNode m_root;
    bool m_continueText = false;
};

XMLNode::XMLNode() = default;

XMLNode XMLNode::parse(const QByteArray &document, Error *error)
{
    return XMLNodeBuilder(document).build(error);
}

QString XMLNode::getName() const
{
    return m_data ? m_data->name : QString();
}

int XMLNode::line() const
{
    return m_data ? m_data->line : 0;
}

const char16_t *XMLNode::getAttribute(const char *name, int *) const
{
    if (m_data) {
        for (const auto &[attribute, value] : m_data->attributes) {
            if (attribute == QLatin1StringView(name)) {
                return units(value);
            }
        }
    }
    return nullptr;
}

QStringList XMLNode::attributeNames() const
{
    QStringList names;
    if (m_data) {
        for (const auto &[attribute, value] : m_data->attributes) {
            names << attribute;
        }
    }
    return names;
}

int XMLNode::nChildNode() const
{
    return m_data ? static_cast<int>(m_data->children.size()) : 0;
}

XMLNode XMLNode::getChildNode(int i) const
{
    return i >= 0 && i < nChildNode() ? m_data->children[static_cast<size_t>(i)] : XMLNode();
}

XMLNode XMLNode::getChildNode(const char *name, int *index) const
{
    for (int i = index != nullptr ? *index : 0; i < nChildNode(); ++i) {
        const XMLNode &child = m_data->children[static_cast<size_t>(i)];
        if (child.m_data->name == QLatin1StringView(name)) {
            if (index != nullptr) {
                *index = i + 1;
            }
            return child;
        }
    }
    return {};
}

const char16_t *XMLNode::getText(int i) const
{
    return m_data && i >= 0 && i < m_data->texts.size() ? units(m_data->texts[i]) : nullptr;
}

QString XMLNode::text() const
{
    return m_data ? m_data->texts.join(QString()) : QString();
}

QString xmltoa(const char16_t *text, const QString &defaultValue)
{
    return text != nullptr ? QString::fromUtf16(text) : defaultValue;
}

long long xmltol(const char16_t *text, long long defaultValue)
{
    if (text == nullptr) {
        return defaultValue;
    }
    while (*text == u' ' || (*text >= u'\t' && *text <= u'\r')) {
        ++text;
    }
    const bool negative = *text == u'-';
    text += *text == u'-' || *text == u'+' ? 1 : 0;
    long long value = 0;
    for (; *text >= u'0' && *text <= u'9'; ++text) {
        const long long digit = negative ? -(*text - u'0') : *text - u'0';
        if (__builtin_mul_overflow(value, 10LL, &value) ||
            __builtin_add_overflow(value, digit, &value)) {
            return negative ? std::numeric_limits<long long>::min()
                            : std::numeric_limits<long long>::max();
        }
    }
    return value;
}

int xmltoi(const char16_t *text, int defaultValue)
{
    constexpr long long low = std::numeric_limits<int>::min();
    constexpr long long high = std::numeric_limits<int>::max();
    return static_cast<int>(qBound(low, xmltol(text, defaultValue), high));
}

double xmltof(const char16_t *text, double defaultValue)
{
    if (text == nullptr) {
        return defaultValue;
    }
    // The longest beginning that is a number: parameters are short.
    const QString trimmed = QString::fromUtf16(text).trimmed();
    for (qsizetype n = trimmed.size(); n > 0; --n) {
        bool ok = false;
        const double value = QStringView(trimmed).first(n).toDouble(&ok);
        if (ok) {
            return value;
        }
    }
    return 0;
}

char xmltob(const char16_t *text, char defaultValue)
{
    if (text == nullptr) {
        return defaultValue;
    }
    const QString value = QString::fromUtf16(text).trimmed().toLower();
    return value.isEmpty() || value == "0"_L1 || value == "false"_L1 || value == "no"_L1 ? 0 : 1;
}

QStringList fromXMLSL(const XMLNode &node)
{
    QStringList list;
    for (int i = 0; i < node.nChildNode(); ++i) {
        const XMLNode child = node.getChildNode(i);
        if (child.getName() == "s"_L1) {
            list << child.text();
        }
    }
    return list;
}

void toXML(const QStringList &list, std::wostream &out)
{
    ToXMLStringTool tool;
    for (const QString &text : list) {
        out << L"<s>" << tool.toXML(text) << L"</s>";
    }
}

ToXMLStringTool::ToXMLStringTool() = default;
ToXMLStringTool::~ToXMLStringTool() = default;

const wchar_t *ToXMLStringTool::toXML(const QString &text)
{
    m_buffer = std::make_unique<std::wstring>();
    for (const wchar_t c : text.toStdWString()) {
        switch (c) {
        case L'&':
            *m_buffer += L"&amp;";
            break;
        case L'<':
            *m_buffer += L"&lt;";
            break;
        case L'>':
            *m_buffer += L"&gt;";
            break;
        case L'"':
            *m_buffer += L"&quot;";
            break;
        case L'\'':
            *m_buffer += L"&apos;";
            break;
        case L'\n':
            *m_buffer += L"&#10;";
            break;
        case L'\r':
            *m_buffer += L"&#13;";
            break;
        case L'\t':
            *m_buffer += L"&#9;";
            break;
        default:
            *m_buffer += c;
        }
    }
    return m_buffer->c_str();
}

void ToXMLStringTool::freeBuffer()
{
    m_buffer.reset();
}

bool isNewFile(const XMLNode &node)
{
    return node.getAttribute("version") == nullptr;
}
