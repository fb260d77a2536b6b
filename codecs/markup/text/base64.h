// codecs/markup/text/base64.h
// Base64 with the standard alphabet of RFC 4648, section 4.
#pragma once
#include "codecs/markup/text/error.h"

#include <QByteArray>

#include <span>
#include <string_view>

namespace corvanta::markup {

/// Bytes as Base64 text, padded with "=", without line breaks.
QByteArray encodeBase64(QByteArrayView bytes);

/// What decoding `text` gave. `code` is None, a warning (the bytes are usable) or an error.
struct Base64Result
{
    MarkupError code = MarkupError::None;
    qsizetype size = 0; ///< bytes written
};

/// Decode `text` into `out`. Blanks and line breaks are skipped; "=" ends the data.
/// Codes: Base64IllegalCharacter, Base64BufferTooSmall; Base64TruncatedWarning when a single
/// character is left over, Base64LengthWarning when the padding is missing.
Base64Result decodeBase64(std::u16string_view text, std::span<char> out);

} // namespace corvanta::markup
