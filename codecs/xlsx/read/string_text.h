// Text of strings: raw XML text to UTF-16, and string items (ECMA-376 part
// 1, 18.4.8, 18.4.6, 22.9.2.19).
#pragma once
#include "codecs/xlsx/read/part_text.h"

#include <vector>

namespace corvanta::xlsx {

/// Units of a text with all its parts. A cell of a workbook holds 32,767.
inline constexpr size_t kMaxTextUnits = (size_t(1) << 24) - 1;

/// The fault of a longer text.
Fault<sheet::WorkbookError> longText(const PartText &part);

/// Append raw text as UTF-16: references are decoded, line ends become LF (XML 1.0, section 2.11),
/// and then the forms _xHHHH_ of characters that XML cannot hold are decoded.
/// At least kWidenBlock readable bytes follow `raw`. `isLiteral`: the text of a CDATA section,
/// without references. Appends at most one unit per byte. Returns false when bytes were not UTF-8;
/// each of them became U+FFFD.
bool appendText(QByteArrayView raw, bool isLiteral, std::vector<char16_t> *out);

/// Append the text of the string item `si` or `is` whose opening tag was the last item: the texts
/// of all its runs, without those that show the pronunciation. Sets `*isBad` as appendText()
/// returns false. Errors: those of PartText::nextItem(); TooLarge.
sheet::WorkbookResult<void> appendStringItem(PartText &part, const opc::Tag &opening,
                                             std::vector<char16_t> *out, bool *isBad);

/// Append the texts inside the element whose opening tag was the last item. Errors: as above.
sheet::WorkbookResult<void> appendElementText(PartText &part, const opc::Tag &opening,
                                              std::vector<char16_t> *out, bool *isBad);

} // namespace corvanta::xlsx
