// Text of worksheet cells: escaping, column letters, hyperlink texts.
//
// Format: ECMA-376 part 1, 18.3.1.4 (c), 18.18.37 (ST_CellRef), 22.9.2.19 (ST_Xstring, the _xHHHH_
// form). Lengths of texts are in UTF-16 units.
#pragma once
#include "base/number.h"

#include <QByteArray>
#include <QtGlobal>

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace corvanta::sheet {

/// Characters that the spreadsheet application accepts in a cell, plus one.
inline constexpr qsizetype kCellCharLimit = 32768;
/// Characters that the writer accepts in a cell: 4 MiB of UTF-16 for a whole cell, of which its
/// elements and a final NUL take 69 units.
inline constexpr qsizetype kMaxCellChars = (qsizetype(4) << 20) / 2 - 69;
/// The largest number of bytes that one unit becomes: "_x000A_".
inline constexpr qsizetype kMaxBytesPerUnit = 7;
/// Texts of up to this length cannot reach kCellCharLimit, whatever their content.
inline constexpr qsizetype kShortTextUnits = (kCellCharLimit - 1) / kMaxBytesPerUnit;

/// Escape cell text into UTF-8: "<", "&", control characters as _x00HH_, an underscore that starts
/// such a form as _x005F_, U+FFFE as "_"; ">" and quotes are unchanged. `out` has room for n *
/// kMaxBytesPerUnit. Returns the end of the result. `*isOdd` is set to true for
/// a text with units that no sheet can hold: U+FFFE and lone surrogates, which are replaced, and
/// U+FFFF, which is copied.
char *escapeText(const char16_t *text, qsizetype n, char *out, bool *isOdd);

/// What escapeLongText() does at kCellCharLimit.
enum class AtLimit {
    Crop, ///< end the text before it
    Warn  ///< write the whole text, which spreadsheet programs may reject
};

/// escapeText() for any length. At the piece with which the text reaches kCellCharLimit characters,
/// Crop calls `tooLong` and ends the text; Warn calls `tooLong` for this piece and each later one.
/// Stops when the text grows beyond `maxChars` characters. Returns the characters (UTF-16 units of
/// the escaped text); more than `maxChars` if it stopped there.
qsizetype escapeLongText(const char16_t *text, qsizetype n, AtLimit atLimit, qsizetype maxChars,
                         const std::function<void()> &tooLong, std::vector<char> *out, bool *isOdd);

/// Column letters of a 0-based position: 0 -> A, 25 -> Z, 26 -> AA. There is no upper limit;
/// spreadsheet programs read columns up to XFD (16383).
QByteArray columnLetters(int column0);

/// Whether a format gives numbers that the value of a cell can be (XML Schema part 2, 3.2.5): the
/// printed text reads back as the number, apart from spaces around it.
bool printsNumbers(const FloatFormat &format);

/// A text of the form URL("label","url") or URL("url"), as views into that text.
struct LinkText
{
    std::u16string_view label;
    std::u16string_view url;
};
/// The parts of such a text; std::nullopt when it does not begin with URL( or is shorter than 5
/// units. The form is not checked further: quotes are not verified, a missing end is accepted, and
/// a text without `","` is both label and URL.
std::optional<LinkText> parseLink(std::u16string_view text);

} // namespace corvanta::sheet
