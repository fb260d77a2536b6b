// Any bytes as Base64, and any text as Base64: encoded bytes are decoded to the same bytes, and the
// decoder writes nothing beyond its room.
//
// Byte 0: how much room is missing.
#include "codecs/markup/text/base64.h"
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"

using namespace corvanta::markup;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const size_t missing = feed.byte();
    const QByteArrayView bytes = feed.rest();
    const QByteArray encoded = encodeBase64(bytes);
    std::vector<char> room(static_cast<size_t>(bytes.size()));
    const auto same = decodeBase64(QString::fromLatin1(encoded).toStdU16String(), room);
    require(same && !same->warning && same->size == bytes.size());
    require(QByteArrayView(room.data(), same->size) == bytes);

    const std::u16string text = feed.text(1 << 16);
    const size_t enough = (text.size() + 3) / 4 * 3;
    std::vector<char> out(enough - std::min(enough, missing));
    const auto decoded = decodeBase64(text, out);
    require(!decoded || decoded->size <= static_cast<qsizetype>(out.size()));
    require(decoded || missing > 0 || decoded.fault().code == MarkupError::Base64IllegalCharacter);
    require(decoded || errorText(decoded.fault().code) != nullptr);
    return 0;
}
