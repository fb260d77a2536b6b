// Conversions between attribute texts and values.
//
// The conversions never fail, because saved graphs may contain any text: they accept what they can
// and return a fixed result for the rest.
#include "corvanta/xml_node.h"

#include <limits>
#include <ostream>

using namespace Qt::StringLiterals;

// Texts become QString by way of QStringView: fromUtf16() takes a byte-order mark off the start.

QString xmltoa(const char16_t *text, const QString &defaultValue)
{
    return text != nullptr ? QStringView(text).toString() : defaultValue;
}

long long xmltol(const char16_t *text, long long defaultValue)
{
    if (text == nullptr) {
        return defaultValue;
    }
    // Blank, tab, line feed, vertical tab, form feed and carriage return, whatever the locale is.
    while (*text == u' ' || (*text >= u'\t' && *text <= u'\r')) {
        ++text;
    }
    // Add negative digits for a negative number, so that the smallest value does not overflow.
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
    // Not by way of a double, and not by cutting bits off: a large number must stay a large one.
    constexpr long long low = std::numeric_limits<int>::min();
    constexpr long long high = std::numeric_limits<int>::max();
    return static_cast<int>(qBound(low, xmltol(text, defaultValue), high));
}

double xmltof(const char16_t *text, double defaultValue)
{
    if (text == nullptr) {
        return defaultValue;
    }
    // Find the longest beginning that is a number. Try ever shorter beginnings; parameters are
    // short.
    const QString trimmed = QStringView(text).trimmed().toString();
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
    const QString value = QStringView(text).trimmed().toString().toLower();
    return value.isEmpty() || value == "0"_L1 || value == "false"_L1 || value == "no"_L1 ? 0 : 1;
}

QStringList fromXMLSL(const XMLNode &node)
{
    QStringList list;
    for (int i = 0; i < node.nChildNode(); ++i) {
        const XMLNode child = node.getChildNode(i);
        // Skip other children: a list may be part of a larger element.
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
    // A new string, so that freeBuffer() can free the memory of a large one.
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
        // Attribute values are normalised by readers: plain line ends and tabs would become spaces.
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
