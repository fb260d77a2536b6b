// Any bytes as a text whose columns are scanned in pieces on several threads: the result is that of
// one scan, wherever the text is cut.
//
// Byte 0: the format and the number of threads. Byte 1: the size of the pieces. The text follows.
#include "codecs/markup/sample/sample_levels.h"
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"
#include "tests/support/piece_kinds.h"

using namespace corvanta;
using namespace corvanta::test;

namespace {

/// kinds(source, pieceBytes, workers) for pieces, and for the whole text.
template <class Kinds>
void checkKinds(QByteArrayView text, qsizetype pieceBytes, int workers, const Kinds &kinds)
{
    MemorySource whole(text);
    MemorySource pieces(text, 37);
    require(kinds(whole, qsizetype(0), 0) == kinds(pieces, pieceBytes, workers));
}

std::vector<markup::Level> levelsOf(QByteArrayView text)
{
    MemorySource sample(text);
    return markup::sampleDocument(*jsonTokenizer(sample), {}).tables.front().levels;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const int flags = feed.byte();
    const qsizetype pieceBytes = 1 + feed.byte();
    const int workers = flags / 4 % 3;
    const QByteArrayView text = feed.rest();
    if ((flags & 1) == 0) {
        checkKinds(text, pieceBytes, workers, [&](auto &source, qsizetype bytes, int threads) {
            return csvKinds(source, (flags & 2) != 0, bytes, threads);
        });
        return 0;
    }
    const std::vector<markup::Level> levels = levelsOf(text);
    checkKinds(text, pieceBytes, workers, [&](auto &source, qsizetype bytes, int threads) {
        return jsonKinds(source, levels, bytes, threads);
    });
    return 0;
}
