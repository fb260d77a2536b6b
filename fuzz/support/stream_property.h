// Checks what must be true for any bytes that are unpacked as a stream: content and error do
// not depend on the sizes of the reads.
#pragma once
#include "base/byte_source.h"
#include "fuzz/support/require.h"

#include <QByteArray>

namespace corvanta {

/// What a reader gives for the first bytes of the content, and its error; 0 is none.
struct Unpacked
{
    QByteArray content;
    int error = 0;
};

/// Unpack with reads of `outPiece` bytes from a source that gives up to `inPiece` bytes at a time.
template <class Reader> Unpacked unpack(QByteArrayView packed, qint64 inPiece, qint64 outPiece)
{
    constexpr qsizetype kMaxBytes = 1 << 20;
    MemorySource source(packed, inPiece);
    auto reader = Reader::open(source);
    Unpacked out;
    out.error = reader ? 0 : static_cast<int>(reader.fault().code);
    QByteArray piece(outPiece, '\0');
    while (reader && out.content.size() < kMaxBytes) {
        const auto got = (*reader)->read(
            piece.data(), std::min<qint64>(outPiece, kMaxBytes - out.content.size()));
        out.error = got ? 0 : static_cast<int>(got.fault().code);
        if (!got || *got == 0) {
            break;
        }
        out.content.append(piece.constData(), *got);
    }
    return out;
}

/// Compare large reads with small ones. With `losesBytes`, a reader that finds damage need not give
/// the bytes before it, so that small reads may give more.
template <class Reader> void checkStream(QByteArrayView packed, bool losesBytes)
{
    const Unpacked whole = unpack<Reader>(packed, -1, 1 << 16);
    const Unpacked pieces = unpack<Reader>(packed, 3, 7);
    require(whole.error == pieces.error);
    require(pieces.content.startsWith(whole.content));
    require((losesBytes && whole.error != 0) || whole.content.size() == pieces.content.size());
}

} // namespace corvanta
