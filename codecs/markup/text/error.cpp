// The texts are indexed by code. Programs of users search logs for them: never change one.
#include "codecs/markup/text/error.h"

#include <array>

namespace corvanta::markup {

namespace {

/// In the order of MarkupError. Codes that this reader never returns keep their place.
constexpr std::array kTexts{
    u"No error",
    u"Warning: Unmatched end tag",
    u"Warning: No XML/JSON tag found",
    u"Error: No XML/JSON data",
    u"Error: Unmatched end tag",
    u"Error: Unexpected end tag",
    u"Error: Unmatched clear tag end",
    u"Error: File not found",
    u"Error: First Tag not found",
    u"Error: Unknown character entity",
    u"Error: Character code above 255 is forbidden in MultiByte char mode.",
    u"Error: Invalid char in tag name",
    u"Error: Invalid char in end tag name",
    u"Error: Invalid char at tag end",
    u"Error: Invalid char at PI end",
    u"Error: Attribute with No Equal Sign",
    u"Error: Quote or DoubleQuote expected",
    u"Error: Unable to convert between WideChar and MultiByte chars",
    u"Error: DOM Max Memory Reached",
    u"Error: Memory Allocation error",
    u"Error: read stream data",
    u"Error: Unable to open file for writing",
    u"Error: Cannot write into file",
    u"Error: colon (:) character expected",
    u"Error: invalid character inside number",
    u"Error: 'true' string expected",
    u"Error: 'false' string expected",
    u"Error: 'null' string expected",
    u"Warning: Base64-string length is not a multiple of 4",
    u"Error: Base64-string contains an illegal character",
    u"Warning: Base64-string is truncated",
    u"Error: Base64 decode output buffer is too small",
};

} // namespace

const char16_t *errorText(MarkupError code)
{
    const auto index = static_cast<size_t>(code);
    return index < kTexts.size() ? std::data(kTexts)[index] : u"Unknown error";
}

bool isWarning(MarkupError code)
{
    return code == MarkupError::UnmatchedEndTagWarning || code == MarkupError::NoTagFound ||
           code == MarkupError::Base64LengthWarning || code == MarkupError::Base64TruncatedWarning;
}

} // namespace corvanta::markup
