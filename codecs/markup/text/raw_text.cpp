#include "codecs/markup/text/raw_text.h"

#include "base/utf.h"
#include "codecs/markup/text/entities.h"

#include <cstring>

namespace corvanta::markup {

namespace {

int hexValue(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char l = static_cast<char>(c | 0x20);
    return l >= 'a' && l <= 'f' ? l - 'a' + 10 : -1;
}

/// Four hexadecimal digits at `at`, or -1.
int hexUnit(const char *at, const char *end)
{
    if (end - at < 4) {
        return -1;
    }
    int unit = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = hexValue(at[i]);
        if (digit < 0) {
            return -1;
        }
        unit = unit * 16 + digit;
    }
    return unit;
}

/// What a one-letter escape stands for; other characters stand for themselves.
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

/// Decode the escape at `*at` (behind the backslash). A character that is not ASCII is left to be
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
        // A NUL would cut the value short further on.
        *out++ = unit == 0 ? u' ' : static_cast<char16_t>(unit);
        return out;
    }
    *out++ = simpleEscape(c);
    return out;
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
        if (at == end) {
            break;
        }
        const char c = *at++;
        if (c == '\\') {
            if (at < end) {
                out = putEscape(&at, end, out);
            }
            continue;
        }
        // CR, LF, CR LF and LF CR are one line break each.
        const bool pair = at < end && (*at == '\r' || *at == '\n') && *at != c;
        at += pair ? 1 : 0;
        *out++ = u'\n';
    }
    return out - begin;
}

qsizetype decodeXml(const char *at, const char *end, char16_t *out)
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
        const Entity entity = readEntity(at, end);
        if (entity.kind == Entity::Kind::Character) {
            for (int i = 0; i < entity.unitCount; ++i) {
                *out++ = entity.units[static_cast<size_t>(i)];
            }
            at += entity.length;
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
    case TextForm::XmlEntities:
    case TextForm::External:
        break;
    }
    return decodeXml(text.data, end, out);
}

std::u16string decoded(const RawText &text)
{
    std::u16string out(text.size, u'\0');
    out.resize(static_cast<size_t>(decode(text, out.data())));
    return out;
}

} // namespace corvanta::markup
