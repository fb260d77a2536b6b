// Any bytes as content of a deflate stream: unpacking what was packed gives the content. Any bytes
// as a stream: the result does not depend on the sizes of the pieces.
//
// Bytes 0 to 3: level, workers, size of the pieces, and how often the rest is repeated.
#include "codecs/deflate/crc32.h"
#include "codecs/deflate/deflate_stream.h"
#include "codecs/deflate/inflater.h"
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"

using namespace corvanta;
using namespace corvanta::deflate;

namespace {

constexpr qsizetype kMaxBytes = 4 << 20;

/// The content if `packed` is a whole stream.
std::optional<QByteArray> unpacked(Inflater &inflater, QByteArrayView packed, size_t inBytes,
                                   size_t outBytes)
{
    QByteArray content;
    std::vector<char> out(outBytes);
    auto step = Inflater::Step{Inflater::State::More, 0, 1};
    qint64 at = 0;
    while (step.state == Inflater::State::More && content.size() < kMaxBytes &&
           (at < packed.size() || step.produced > 0)) {
        const auto n = std::min(static_cast<size_t>(packed.size() - at), inBytes);
        step = inflater.inflate({packed.data() + at, n}, out);
        at += step.consumed;
        content.append(out.data(), static_cast<qsizetype>(step.produced));
    }
    return step.state == Inflater::State::End ? std::optional(content) : std::nullopt;
}

/// The engines need not agree about damaged streams.
void unpackAny(QByteArrayView bytes)
{
    for (const bool isZlib : {false, true}) {
        const auto inflater = isZlib ? makeZlibInflater() : makeInflater();
        const auto whole = unpacked(*inflater, bytes, 1 << 16, 1 << 16);
        inflater->reset();
        const auto pieces = unpacked(*inflater, bytes, 3, 5);
        require(whole == pieces);
    }
}

QByteArray repeated(QByteArrayView bytes, int times)
{
    QByteArray content;
    for (int i = 0; i < times && content.size() + bytes.size() <= kMaxBytes; ++i) {
        content += bytes;
    }
    return content;
}

void put(DeflateStream &stream, QByteArrayView content, qsizetype pieceBytes)
{
    bool copies = false;
    for (qsizetype at = 0; at < content.size(); at += pieceBytes) {
        const QByteArrayView piece = content.sliced(at, qMin(pieceBytes, content.size() - at));
        copies = !copies;
        if (copies) {
            require(bool(stream.write({piece.data(), static_cast<size_t>(piece.size())})));
            continue;
        }
        const auto room = stream.room(static_cast<size_t>(piece.size()));
        require(bool(room));
        std::copy(piece.begin(), piece.end(), room->begin());
        stream.commit(static_cast<size_t>(piece.size()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const int level = feed.byte();
    StreamOptions options;
    options.level = (level & 1) != 0 ? Level{Engine::Zlib, 1 + level / 2 % 9}
                                     : Level{Engine::Isal, 1 + level / 2 % 3};
    options.workers = feed.below(3);
    const qsizetype pieceBytes = 1 + feed.byte() * 800;
    const int times = feed.byte();
    unpackAny(feed.rest());

    const QByteArray content = repeated(feed.rest(), times < 250 ? 1 : 1 << (times - 238));
    MemorySink sink;
    DeflateStream stream(sink, options);
    stream.begin();
    put(stream, content, pieceBytes);
    const auto totals = stream.finish();
    require(totals && totals->size == content.size());
    require(totals->compressedSize == sink.bytes().size());
    require(totals->crc == crc32(0, {content.data(), static_cast<size_t>(content.size())}));
    require(unpacked(*makeInflater(), sink.bytes(), 1 << 16, 1 << 16) == content);
    return 0;
}
