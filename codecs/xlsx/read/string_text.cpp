// String items:
//
//   <si><t>plain</t></si>
//   <si><r><rPr>...</rPr><t>rich </t></r><r><t>text</t></r><rPh sb="0"
//   eb="4"><t>pronounced</t></rPh></si>
#include "codecs/xlsx/read/string_text.h"

#include "base/utf.h"
#include "codecs/encoding/hex_digit.h"

#include <cstring>
#include <optional>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

namespace {

/// Units of the form _xHHHH_.
constexpr size_t kEscapeUnits = 7;

/// The unit that the form at `at` encodes.
std::optional<char16_t> escapedUnit(const char16_t *at, const char16_t *end)
{
    if (end - at < static_cast<std::ptrdiff_t>(kEscapeUnits) || at[0] != u'_' || at[1] != u'x' ||
        at[kEscapeUnits - 1] != u'_') {
        return std::nullopt;
    }
    int value = 0;
    for (int i = 2; i < 6; ++i) {
        const int digit = hexDigit(at[i]);
        if (digit < 0) {
            return std::nullopt;
        }
        value = value * 16 + digit;
    }
    return static_cast<char16_t>(value);
}

/// Decode the escapes of `out` in place, starting at `from`.
void decodeEscapes(std::vector<char16_t> *out, size_t from)
{
    char16_t *to = out->data() + from;
    const char16_t *const end = out->data() + out->size();
    for (const char16_t *at = to; at != end;) {
        const auto unit = escapedUnit(at, end);
        *to++ = unit.value_or(*at);
        at += unit ? kEscapeUnits : 1;
    }
    out->resize(static_cast<size_t>(to - out->data()));
}

/// Take the reference or line end at `at`; returns the address after it.
const char *takeSpecial(const char *at, const char *end, char16_t **to)
{
    if (*at == '\r') {
        // The "\n" of a pair is copied with the text after it.
        if (at + 1 == end || at[1] != '\n') {
            *(*to)++ = u'\n';
        }
        return at + 1;
    }
    const auto *const stop =
        static_cast<const char *>(std::memchr(at, ';', static_cast<size_t>(end - at)));
    if (stop == nullptr) {
        *(*to)++ = u'&';
        return at + 1;
    }
    const QString text = opc::decoded({at, stop + 1 - at});
    // A reference is longer than its characters.
    const qsizetype n = std::min<qsizetype>(text.size(), stop + 1 - at);
    std::copy_n(reinterpret_cast<const char16_t *>(text.utf16()), n, *to);
    *to += n;
    return stop + 1;
}

/// The first "&" or "\r", or `end`.
const char *findSpecial(const char *at, const char *end)
{
    while (at != end && *at != '&' && *at != '\r') {
        ++at;
    }
    return at;
}

bool has(QByteArrayView text, char c)
{
    return std::memchr(text.data(), c, static_cast<size_t>(text.size())) != nullptr;
}

/// Widen a text that is all ASCII and needs no decoding, as most are. Returns false for any other;
/// `to` is then partly written. May load a block beyond the text, where there is padding.
bool widenSimple(QByteArrayView raw, char16_t *to)
{
    const auto is = [](__m128i block, char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
    for (qsizetype at = 0; at < raw.size(); at += kWidenBlock) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(raw.data() + at));
        const __m128i special =
            _mm_or_si128(_mm_or_si128(is(block, '&'), is(block, '\r')), is(block, '_'));
        quint32 mask = widenBlock(raw.data() + at, to + at);
        mask |= static_cast<quint32>(_mm_movemask_epi8(special));
        const qsizetype left = raw.size() - at;
        mask &= left >= kWidenBlock ? 0xFFFFU : (1U << left) - 1;
        if (mask != 0) {
            return false;
        }
    }
    return true;
}

bool isWellFormed(QByteArrayView raw)
{
    Utf8Stop stop = Utf8Stop::End;
    wellFormedUtf8(raw.data(), raw.size(), &stop);
    return stop == Utf8Stop::End;
}

} // namespace

bool appendText(QByteArrayView raw, bool isLiteral, std::vector<char16_t> *out)
{
    if (raw.isEmpty()) {
        return true;
    }
    const size_t from = out->size();
    // The conversion may write a whole block beyond its result.
    out->resize(from + static_cast<size_t>(raw.size()) + kWidenBlock);
    char16_t *to = out->data() + from;
    if (widenSimple(raw, to)) {
        out->resize(from + static_cast<size_t>(raw.size()));
        return true;
    }
    const bool isPlain = !has(raw, '\r') && (isLiteral || !has(raw, '&'));
    const char *const end = raw.data() + raw.size();
    for (const char *at = raw.data(); at != end;) {
        const char *const stop = isPlain ? end : findSpecial(at, end);
        to += utf8ToUtf16(at, stop - at, to);
        at = stop;
        if (at != end && *at == '&' && isLiteral) {
            *to++ = u'&';
            ++at;
        } else if (at != end) {
            at = takeSpecial(at, end, &to);
        }
    }
    const auto units = static_cast<size_t>(to - out->data()) - from;
    out->resize(from + units);
    if (has(raw, '_')) {
        decodeEscapes(out, from);
    }
    return isWellFormed(raw);
}

Fault<sheet::WorkbookError> longText(const PartText &part)
{
    return part.fault(sheet::WorkbookError::TooLarge,
                      u"a text has more than %1 characters"_s.arg(kMaxTextUnits));
}

sheet::WorkbookResult<void> appendElementText(PartText &part, const opc::Tag &opening,
                                              std::vector<char16_t> *out, bool *isBad)
{
    using Kind = MarkupItem::Kind;
    const size_t begin = out->size();
    int depth = opening.kind == opc::Tag::Kind::Open ? 1 : 0;
    while (depth > 0) {
        const auto item = part.nextItem();
        if (!item) {
            return item.fault();
        }
        if (item->kind == Kind::End) {
            return part.truncated();
        }
        if (item->kind == Kind::Tag) {
            depth += item->tag.kind == opc::Tag::Kind::Open    ? 1
                     : item->tag.kind == opc::Tag::Kind::Close ? -1
                                                               : 0;
        } else if (!appendText(item->text, item->kind == Kind::CData, out)) {
            *isBad = true;
        }
        if (out->size() - begin > kMaxTextUnits) {
            return longText(part);
        }
    }
    return {};
}

sheet::WorkbookResult<void> appendStringItem(PartText &part, const opc::Tag &opening,
                                             std::vector<char16_t> *out, bool *isBad)
{
    const QByteArray name = opening.name.toByteArray();
    const size_t begin = out->size();
    if (opening.kind == opc::Tag::Kind::Empty) {
        return {};
    }
    for (;;) {
        const auto item = part.nextItem();
        if (!item) {
            return item.fault();
        }
        if (item->kind == MarkupItem::Kind::End) {
            return part.truncated();
        }
        if (item->kind != MarkupItem::Kind::Tag) {
            continue;
        }
        if (item->tag.kind == opc::Tag::Kind::Close && item->tag.name == name) {
            return {};
        }
        sheet::WorkbookResult<void> done;
        if (item->isOpening("t")) {
            done = appendElementText(part, item->tag, out, isBad);
        } else if (item->isOpening("rPh") || item->isOpening("rPr")) {
            done = part.skipElement(item->tag);
        }
        if (!done) {
            return done;
        }
        if (out->size() - begin > kMaxTextUnits) {
            return longText(part);
        }
    }
}

} // namespace corvanta::xlsx
