// The evidence, in order: a byte-order mark or the zeros of UTF-16; for XML, the declaration
// (XML 1.0, section 4.3.3) near the start,
//
//     <?xml version="1.0" encoding="NAME"?>
//
// compared with whether all bytes follow the pattern of UTF-8. What the <meta> of a page declares
// comes before both.
#include "codecs/markup/text/encoding.h"

#include "codecs/markup/text/html_charset.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace corvanta::markup {

namespace {

// Shorter data holds too little evidence.
constexpr qsizetype kMinGuessBytes = 25;
constexpr qsizetype kDeclarationBytes = 200;

uchar byteAt(QByteArrayView bytes, qsizetype i)
{
    return static_cast<uchar>(bytes[i]);
}

/// Continuation bytes after a lead byte; std::nullopt if it is not a lead byte.
std::optional<int> continuationBytes(uchar lead)
{
    if (lead < 0x80) {
        return 0;
    }
    if (lead < 0xC0 || lead >= 0xF8) {
        return std::nullopt;
    }
    return lead < 0xE0 ? 1 : (lead < 0xF0 ? 2 : 3);
}

/// True when every lead byte is followed by its continuation bytes. Accepts overlong sequences and
/// surrogates, and a sequence that the end of the sample truncates.
bool followsUtf8Pattern(QByteArrayView bytes)
{
    for (qsizetype i = 0; i < bytes.size();) {
        const std::optional<int> more = continuationBytes(byteAt(bytes, i++));
        if (!more) {
            return false;
        }
        for (int k = 0; k < *more && i < bytes.size(); ++k, ++i) {
            if ((byteAt(bytes, i) & 0xC0) != 0x80) {
                return false;
            }
        }
    }
    return true;
}

/// `text` without the spaces at its start.
std::string_view withoutSpaces(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    return text;
}

/// The value of `encoding = "..."` near the start of the document; empty if it is missing.
QByteArray declaredEncoding(QByteArrayView bytes)
{
    const std::string_view text(bytes.data(),
                                static_cast<size_t>(std::min(bytes.size(), kDeclarationBytes)));
    constexpr std::string_view kWord = "encoding";
    const size_t word = text.find(kWord);
    if (word == std::string_view::npos) {
        return {};
    }
    std::string_view rest = withoutSpaces(text.substr(word + kWord.size()));
    if (!rest.starts_with('=')) {
        return {};
    }
    rest = withoutSpaces(rest.substr(1));
    if (!rest.starts_with('"') && !rest.starts_with('\'')) {
        return {};
    }
    const char quote = rest.front();
    rest = withoutSpaces(rest.substr(1));
    const size_t end = rest.find(quote);
    return end == std::string_view::npos ? QByteArray()
                                         : QByteArray(rest.data(), static_cast<qsizetype>(end));
}

} // namespace

bool looksLikeUtf16(QByteArrayView bytes)
{
    constexpr qsizetype kSample = 512;
    const qsizetype n = qMin(bytes.size(), kSample) & ~qsizetype(1);
    if (n < 2) {
        return false;
    }
    const bool littleMark = byteAt(bytes, 0) == 0xFF && byteAt(bytes, 1) == 0xFE;
    const bool bigMark = byteAt(bytes, 0) == 0xFE && byteAt(bytes, 1) == 0xFF;
    std::array<qsizetype, 2> zeros{};
    for (qsizetype i = 0; i < n; ++i) {
        zeros[static_cast<size_t>(i & 1)] += bytes[i] == 0 ? 1 : 0;
    }
    const qsizetype most = qMax(zeros[0], zeros[1]);
    const bool notAllZero = zeros[0] + zeros[1] < n;
    return littleMark || bigMark || (notAllZero && most * 10 >= n / 2 * 7);
}

static bool isWideEncoding(QByteArrayView name)
{
    const QByteArray lower = name.toByteArray().toLower();
    return lower.startsWith("utf-16") || lower.startsWith("utf16") || lower.startsWith("utf-32") ||
           lower.startsWith("utf32") || lower.startsWith("ucs-2") || lower.startsWith("ucs-4") ||
           lower.startsWith("iso-10646-ucs-");
}

QByteArray guessEncoding(QByteArrayView first)
{
    if (first.size() < kMinGuessBytes) {
        return QByteArrayLiteral("System");
    }
    if (looksLikeUtf16(first)) {
        const bool secondUnit = first[2] != 0 || first[3] != 0;
        const bool firstUnit = first[0] != 0 || first[1] != 0;
        return secondUnit && firstUnit ? QByteArrayLiteral("UTF-16") : QByteArrayLiteral("UTF-32");
    }
    if (first.startsWith("\xEF\xBB\xBF")) {
        return QByteArrayLiteral("UTF-8");
    }
    const bool utf8 = followsUtf8Pattern(first);
    QByteArray declared = declaredEncoding(first);
    const QByteArray lower = declared.toLower();
    if (lower.startsWith("utf-8") || lower.startsWith("utf8")) {
        return utf8 ? QByteArrayLiteral("UTF-8") : QByteArrayLiteral("ERROR");
    }
    // A declaration that is read byte by byte is not in an encoding of wider units.
    if (!declared.isEmpty() && !isWideEncoding(declared)) {
        return declared;
    }
    return utf8 ? QByteArrayLiteral("UTF-8") : QByteArrayLiteral("System");
}

/// The encoding of the byte-order mark at the start; empty without one. The mark of UTF-32 is
/// tested first: as UTF-16 it would be a mark and a NUL.
static QByteArray markedEncoding(QByteArrayView first)
{
    if (first.startsWith(QByteArrayView("\xFF\xFE\0\0", 4))) {
        return "UTF-32LE";
    }
    if (first.startsWith("\xEF\xBB\xBF")) {
        return "UTF-8";
    }
    if (first.startsWith("\xFE\xFF")) {
        return "UTF-16BE";
    }
    return first.startsWith("\xFF\xFE") ? "UTF-16LE" : "";
}

EncodingChoice chooseEncoding(QByteArrayView first, const QByteArray &name,
                              const QByteArray &charset)
{
    QByteArray marked = markedEncoding(first);
    if (!marked.isEmpty()) {
        return {marked};
    }
    if (!name.isEmpty() && name.compare("auto", Qt::CaseInsensitive) != 0) {
        return {name};
    }
    const bool isDeclared = !charset.isEmpty() && !looksLikeUtf16(first);
    const QByteArray ofPage = isDeclared ? encodingOfCharset(charset) : QByteArray();
    if (!ofPage.isEmpty()) {
        return {ofPage};
    }
    EncodingChoice choice{guessEncoding(first)};
    choice.unknown = isDeclared ? charset : QByteArray();
    const QByteArray declared = declaredEncoding(first);
    const bool isWide = isWideEncoding(declared) && !looksLikeUtf16(first);
    choice.contradicted = isWide ? declared : QByteArray();
    choice.isAssumed = choice.name == "System" &&
                       std::any_of(first.begin(), first.end(),
                                   [](char c) { return static_cast<uchar>(c) >= 0x80; });
    return choice;
}

CharMode guessJSONEncoding(QByteArrayView first)
{
    const bool marked = first.startsWith("\xFF\xFE") || first.startsWith("\xFE\xFF");
    const bool isWide = first.size() >= 4 && (marked || (first[1] == 0 && first[3] == 0));
    return isWide ? CharMode::Utf16 : CharMode::Utf8;
}

CharMode encodingCode(QByteArrayView name)
{
    static constexpr std::array<std::pair<const char *, CharMode>, 13> kNames{{
        {"utf-8", CharMode::Utf8},
        {"utf8", CharMode::Utf8},
        {"utf-16", CharMode::Utf16},
        {"utf16", CharMode::Utf16},
        {"utf-32", CharMode::Utf32},
        {"utf32", CharMode::Utf32},
        {"shiftjis", CharMode::ShiftJis},
        {"shift-jis", CharMode::ShiftJis},
        {"sjis", CharMode::ShiftJis},
        {"gb2312", CharMode::Gb2312},
        {"big5", CharMode::Big5},
        {"gbk", CharMode::Gbk},
        {"error", CharMode::Error},
    }};
    for (const auto &[known, mode] : kNames) {
        if (name.compare(known, Qt::CaseInsensitive) == 0) {
            return mode;
        }
    }
    return CharMode::CodePage;
}

} // namespace corvanta::markup
