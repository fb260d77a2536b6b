// Escapes in a JSON string (RFC 8259, section 7):
//
//     \b \f \n \r \t     one control character
//     \uXXXX              one UTF-16 unit, four hexadecimal digits
//     \ and another byte  that byte; so \" \\ \/, and also unknown escapes
//
// Escapes in XML: see entities.cpp.
#include "codecs/markup/text/raw_text.h"

#include "base/utf.h"
#include "codecs/encoding/hex_digit.h"
#include "codecs/markup/text/entities.h"

#include <algorithm>
#include <cstring>

namespace corvanta::markup {

namespace {

/// Four hexadecimal digits at `at`, or -1, which is cheaper than a Result.
int hexUnit(const char *at, const char *end)
{
    if (end - at < 4) {
        return -1;
    }
    int unit = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = hexDigit(static_cast<uchar>(at[i]));
        if (digit < 0) {
            return -1;
        }
        unit = unit * 16 + digit;
    }
    return unit;
}

/// The character of a one-letter escape; other characters are unchanged.
char16_t simpleEscape(char c)
{
    switch (c) {
    case 'b':
        return 8;
    case 'f':
        return 12;
    case 'n':
        return 10;
    case 'r':
        return 13;
    case 't':
        return 9;
    default:
        return static_cast<uchar>(c);
    }
}

/// Decode the escape at `*at` (after the backslash). Leaves a character that is not ASCII; it is
/// copied with the text that follows.
char16_t *putEscape(const char **at, const char *end, char16_t *out)
{
    const char c = **at;
    if (static_cast<uchar>(c) >= 0x80) {
        return out;
    }
    ++*at;
    const int unit = c == 'u' ? hexUnit(*at, end) : -1;
    if (unit >= 0) {
        *at += 4;
        // A NUL would end the value for later readers of the cell.
        *out++ = unit == 0 ? u' ' : static_cast<char16_t>(unit);
        return out;
    }
    *out++ = simpleEscape(c);
    return out;
}

/// The end of the line break at `at`: CR, LF, CR LF or LF CR.
const char *afterBreak(const char *at, const char *end)
{
    const char c = *at++;
    const bool isPair = at < end && (*at == '\r' || *at == '\n') && *at != c;
    return isPair ? at + 1 : at;
}

qsizetype decodeJson(const char *at, const char *end, char16_t *out)
{
    char16_t *const begin = out;
    while (at < end) {
        const char *stop = at;
        while (stop < end && *stop != '\\' && *stop != '\r' && *stop != '\n') {
            ++stop;
        }
        out += utf8ToUtf16(at, stop - at, out);
        at = stop;
        if (at < end && *at == '\\') {
            ++at;
            out = at < end ? putEscape(&at, end, out) : out;
        } else if (at < end) {
            at = afterBreak(at, end);
            *out++ = u'\n';
        }
    }
    return out - begin;
}

/// `read(at, end)` returns the reference at a "&", or nothing when it is text. A reference has at
/// least as many bytes as units.
template <class Read>
qsizetype decodeEntities(const char *at, const char *end, char16_t *out, Read read)
{
    char16_t *const begin = out;
    while (at < end) {
        const auto *amp =
            static_cast<const char *>(std::memchr(at, '&', static_cast<size_t>(end - at)));
        const char *const stop = amp != nullptr ? amp : end;
        out += utf8ToUtf16(at, stop - at, out);
        at = stop;
        if (at == end) {
            break;
        }
        if (const std::optional<Entity> entity = read(at, end)) {
            out = std::copy_n(entity->units.begin(), entity->unitCount, out);
            at += entity->length;
        } else {
            *out++ = u'&';
            ++at;
        }
    }
    return out - begin;
}

} // namespace

qsizetype decode(const RawText &text, char16_t *out)
{
    const char *const end = text.data + text.size;
    switch (text.form) {
    case TextForm::Plain:
    case TextForm::Detached:
        return utf8ToUtf16(text.data, text.size, out);
    case TextForm::JsonEscaped:
        return decodeJson(text.data, end, out);
    case TextForm::HtmlEntities:
    case TextForm::HtmlAttribute:
        return decodeEntities(text.data, end, out, [&](const char *at, const char *stop) {
            return readHtmlEntity(at, stop,
                                  text.form == TextForm::HtmlAttribute ? HtmlPlace::Attribute
                                                                       : HtmlPlace::Text);
        });
    case TextForm::XmlEntities:
    case TextForm::External:
        break;
    }
    return decodeEntities(text.data, end, out, readEntity);
}

std::u16string decoded(const RawText &text)
{
    std::u16string out(text.size, u'\0');
    out.resize(static_cast<size_t>(decode(text, out.data())));
    return out;
}

} // namespace corvanta::markup
