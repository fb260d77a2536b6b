// The markup of a part (XML 1.0, sections 2.1 to 3.1; ECMA-376 part 2 forbids the DTD):
//
//   [BOM] [<?xml version="1.0" encoding="UTF-8"?>]
//   <p:name a="value" xmlns:p="uri"> text <empty/> </p:name>
//   <!-- comment -->  <![CDATA[ section ]]>  <?instruction?>     skipped
//   <!DOCTYPE ...>                                               broken
//
// Offsets count bytes of the UTF-8 text.
#include "codecs/opc/markup_scan.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>

namespace corvanta::opc {

namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
           static_cast<uchar>(c) >= 0x80;
}

bool isNameChar(char c)
{
    return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

qsizetype nameEnd(QByteArrayView text, qsizetype at)
{
    while (at < text.size() && isNameChar(text[at])) {
        ++at;
    }
    return at;
}

qsizetype skipSpaces(QByteArrayView text, qsizetype at)
{
    while (at < text.size() && isSpace(text[at])) {
        ++at;
    }
    return at;
}

/// The offset of the tag's ">"; the size of the text if that ends before; -1 for a "<" inside. A
/// ">" in a quoted value does not end the tag.
qsizetype findTagEnd(QByteArrayView text, qsizetype at)
{
    char quote = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '<') {
            return -1;
        }
        if (quote != 0) {
            quote = c == quote ? char(0) : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return at;
        }
    }
    return at;
}

/// scanMarkup() for a tag.
Scan scanTag(QByteArrayView text, qsizetype at, Tag *tag, qsizetype *end)
{
    const bool closes = at + 1 < text.size() && text[at + 1] == '/';
    const qsizetype nameBegin = at + (closes ? 2 : 1);
    if (nameBegin >= text.size()) {
        return Scan::Incomplete;
    }
    if (!isNameStart(text[nameBegin])) {
        return Scan::Broken;
    }
    const qsizetype stop = findTagEnd(text, nameBegin);
    if (stop < 0) {
        return Scan::Broken;
    }
    if (stop == text.size()) {
        return Scan::Incomplete;
    }
    const qsizetype afterName = nameEnd(text, nameBegin);
    const bool isEmpty = !closes && text[stop - 1] == '/';
    const qsizetype insideEnd = isEmpty ? stop - 1 : stop;
    if (afterName > insideEnd || (afterName < insideEnd && !isSpace(text[afterName]))) {
        return Scan::Broken;
    }
    tag->kind = closes ? Tag::Kind::Close : isEmpty ? Tag::Kind::Empty : Tag::Kind::Open;
    tag->begin = at;
    tag->end = stop + 1;
    tag->name = text.sliced(nameBegin, afterName - nameBegin);
    tag->inside = text.sliced(afterName, insideEnd - afterName);
    *end = tag->end;
    return Scan::Tag;
}

/// Markup other than tags, which is skipped.
struct Section
{
    QByteArrayView opening;
    QByteArrayView closing;
};
constexpr std::array<Section, 3> kSections{{{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}}};

/// The code point that "#65" or "#x41" refers to; 0 for one that XML does not allow.
char32_t referenced(QByteArrayView reference)
{
    bool isNumber = false;
    const bool isHex = reference.startsWith("#x");
    const uint code = reference.sliced(isHex ? 2 : 1).toUInt(&isNumber, isHex ? 16 : 10);
    // A surrogate is not a character (XML 1.0, section 2.2), and no UTF-8 encodes one.
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    return isNumber && code <= 0x10FFFF && !isSurrogate ? code : 0;
}

/// Append one unit that is not part of a surrogate pair.
void appendQuotable(QChar unit, QString *out)
{
    switch (unit.unicode()) {
    case '&':
        *out += QLatin1String("&amp;");
        return;
    case '<':
        *out += QLatin1String("&lt;");
        return;
    case '"':
        *out += QLatin1String("&quot;");
        return;
    // Readers replace these by a space unless they are references (XML 1.0, section 3.3.3).
    case '\t':
    case '\n':
    case '\r':
        *out += QLatin1String("&#") + QString::number(unit.unicode()) + QLatin1Char(';');
        return;
    default:
        break;
    }
    const bool isAllowed = unit.unicode() >= 0x20 && unit.unicode() < 0xFFFE && !unit.isSurrogate();
    *out += isAllowed ? unit : QChar(QChar::ReplacementCharacter);
}

/// The character of an entity or character reference without "&" and ";"; empty if it is unknown.
QString entity(QByteArrayView name)
{
    struct Predefined
    {
        QByteArrayView name;
        char character;
    };
    constexpr std::array<Predefined, 5> kPredefined{
        {{"lt", '<'}, {"gt", '>'}, {"apos", '\''}, {"quot", '"'}, {"amp", '&'}}};
    for (const Predefined &known : kPredefined) {
        if (name == known.name) {
            return QString(QLatin1Char(known.character));
        }
    }
    const char32_t code = name.startsWith('#') && name.size() > 1 ? referenced(name) : 0;
    return code == 0 ? QString() : QString::fromUcs4(&code, 1);
}

/// The value of the first attribute with the name.
std::optional<QByteArrayView> valueIn(const std::vector<Attribute> &all, QByteArrayView name)
{
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Attribute &one) { return one.name == name; });
    return found != all.end() ? std::optional(found->value) : std::nullopt;
}

} // namespace

QByteArrayView Tag::prefix() const
{
    const qsizetype colon = name.indexOf(':');
    return colon < 0 ? QByteArrayView() : name.first(colon);
}

QByteArrayView Tag::local() const
{
    return name.sliced(name.indexOf(':') + 1);
}

std::optional<std::vector<Attribute>> Tag::attributes() const
{
    std::vector<Attribute> found;
    qsizetype at = skipSpaces(inside, 0);
    while (at < inside.size()) {
        const qsizetype afterName = nameEnd(inside, at);
        const qsizetype equals = skipSpaces(inside, afterName);
        if (afterName == at || equals == inside.size() || inside[equals] != '=') {
            return std::nullopt;
        }
        const qsizetype quote = skipSpaces(inside, equals + 1);
        if (quote == inside.size() || (inside[quote] != '"' && inside[quote] != '\'')) {
            return std::nullopt;
        }
        // A space must separate attributes (XML 1.0, section 3.1).
        const qsizetype close = inside.indexOf(inside[quote], quote + 1);
        if (close < 0 || (close + 1 < inside.size() && !isSpace(inside[close + 1]))) {
            return std::nullopt;
        }
        found.push_back(
            {inside.sliced(at, afterName - at), inside.sliced(quote + 1, close - quote - 1)});
        at = skipSpaces(inside, close + 1);
    }
    return found;
}

std::optional<QByteArrayView> Tag::attribute(QByteArrayView qualifiedName) const
{
    const auto all = attributes();
    return all ? valueIn(*all, qualifiedName) : std::nullopt;
}

std::optional<QByteArrayView> Tag::prefixBoundTo(QByteArrayView uri) const
{
    const auto all = attributes();
    if (all) {
        for (const Attribute &one : *all) {
            if (one.value == uri && one.name == QByteArrayView("xmlns")) {
                return QByteArrayView();
            }
            if (one.value == uri && one.name.startsWith("xmlns:")) {
                return one.name.sliced(6);
            }
        }
    }
    return std::nullopt;
}

std::optional<QByteArrayView> Tag::declaredNamespace() const
{
    return attribute(prefix().isEmpty() ? QByteArray("xmlns") : "xmlns:" + prefix().toByteArray());
}

Scan scanMarkup(QByteArrayView text, qsizetype at, Tag *tag, qsizetype *end)
{
    const QByteArrayView rest = text.sliced(at);
    if (rest.size() > 1 && rest[1] != '!' && rest[1] != '?') {
        return scanTag(text, at, tag, end);
    }
    // Text that may still become one of the openings is incomplete; any other "<!" is a DTD.
    for (const Section &section : kSections) {
        if (rest.size() < section.opening.size() && section.opening.startsWith(rest)) {
            return Scan::Incomplete;
        }
        if (rest.startsWith(section.opening)) {
            const qsizetype close = text.indexOf(section.closing, at + section.opening.size());
            *end = close + section.closing.size();
            return close < 0 ? Scan::Incomplete : Scan::Skipped;
        }
    }
    return Scan::Broken;
}

bool TagCursor::next()
{
    for (;;) {
        const qsizetype begin = m_text.indexOf('<', m_at);
        if (begin < 0) {
            m_at = m_text.size();
            return false;
        }
        switch (scanMarkup(m_text, begin, &m_tag, &m_at)) {
        case Scan::Tag:
            return true;
        case Scan::Skipped:
            break;
        case Scan::Incomplete:
        case Scan::Broken:
            m_isBroken = true;
            return false;
        }
    }
}

bool isUtf8Text(QByteArrayView beginning)
{
    QByteArrayView text = beginning;
    if (text.startsWith("\xEF\xBB\xBF")) {
        text = text.sliced(3);
    }
    // UTF-16 and UTF-32 have a zero byte or a mark among the first two bytes.
    if (text.size() >= 2 && (text[0] == 0 || text[1] == 0 || static_cast<uchar>(text[0]) >= 0xFE)) {
        return false;
    }
    if (!text.startsWith("<?xml") || text.size() < 6 || !isSpace(text[5])) {
        return true;
    }
    // The declaration has the syntax of attributes between its name and its end.
    const qsizetype end = text.indexOf("?>");
    Tag declaration;
    declaration.inside = text.sliced(5, qMax<qsizetype>(end - 5, 0));
    const auto encoding = declaration.attribute("encoding");
    return !encoding || encoding->compare("utf-8", Qt::CaseInsensitive) == 0 ||
           encoding->compare("utf8", Qt::CaseInsensitive) == 0;
}

QByteArray qualified(QByteArrayView prefix, QByteArrayView local)
{
    return prefix.isEmpty() ? local.toByteArray()
                            : prefix.toByteArray() + ':' + local.toByteArray();
}

QString decoded(QByteArrayView raw)
{
    // Not QString::fromUtf8(), which takes a byte-order mark off the start.
    const auto utf8 = [](QByteArrayView bytes) -> QString {
        return QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom)(bytes);
    };
    QString out;
    qsizetype at = 0;
    while (at < raw.size()) {
        const qsizetype ampersand = raw.indexOf('&', at);
        const qsizetype semicolon = ampersand < 0 ? -1 : raw.indexOf(';', ampersand);
        if (semicolon < 0) {
            break;
        }
        out += utf8(raw.sliced(at, ampersand - at));
        // An unknown reference stays as it is written, beginning with its "&".
        const QString character = entity(raw.sliced(ampersand + 1, semicolon - ampersand - 1));
        out += character.isEmpty() ? QString(QLatin1Char('&')) : character;
        at = character.isEmpty() ? ampersand + 1 : semicolon + 1;
    }
    return out + utf8(raw.sliced(at));
}

QString attributeText(const Tag &tag, QByteArrayView name)
{
    return decoded(tag.attribute(name).value_or(QByteArrayView()));
}

QByteArray quotable(QStringView text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) {
            out += text.sliced(i++, 2);
        } else {
            appendQuotable(text[i], &out);
        }
    }
    return out.toUtf8();
}

} // namespace corvanta::opc
