// Encodes and decodes Base64 with the standard alphabet (RFC 4648, section 4).
#pragma once
#include "base/result.h"
#include "codecs/markup/text/error.h"

#include <QByteArray>

#include <optional>
#include <span>
#include <string_view>

namespace corvanta::markup {

/// Encode `bytes`; the text is padded with "=" and has no line breaks.
QByteArray encodeBase64(QByteArrayView bytes);

/// Result of decodeBase64() for data that is usable.
struct DecodedBase64
{
    /// Bytes written.
    qsizetype size = 0;
    /// Base64TruncatedWarning: a single character is left over; Base64LengthWarning: the padding is
    /// missing.
    std::optional<MarkupError> warning;
};

/// Decode `text` into `out`. Skips spaces and line breaks; "=" ends the data. Errors (their offset
/// is the number of bytes written before): Base64IllegalCharacter, Base64BufferTooSmall.
Result<DecodedBase64, MarkupError> decodeBase64(std::u16string_view text, std::span<char> out);

} // namespace corvanta::markup
