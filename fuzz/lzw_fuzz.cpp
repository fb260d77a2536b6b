// Any bytes as a .Z file: the result does not depend on the sizes of reads.
#include "codecs/lzw/lzw_reader.h"

#include <QByteArray>

#include <cstdlib>

using namespace corvanta;

static QByteArray decode(QByteArrayView packed, qint64 inPiece, qint64 outPiece, int *error)
{
    constexpr qsizetype kMaxBytes = 1 << 20;
    MemorySource source(packed, inPiece);
    auto reader = lzw::Reader::open(source);
    QByteArray out;
    QByteArray piece(outPiece, '\0');
    *error = reader ? 0 : static_cast<int>(reader.fault().code);
    while (reader && out.size() < kMaxBytes) {
        const auto got =
            (*reader)->read(piece.data(), std::min<qint64>(outPiece, kMaxBytes - out.size()));
        *error = got ? 0 : static_cast<int>(got.fault().code);
        if (!got || *got == 0) {
            break;
        }
        out.append(piece.constData(), *got);
    }
    return out;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView packed(data, static_cast<qsizetype>(size));
    int wholeError = 0;
    int piecesError = 0;
    const QByteArray whole = decode(packed, -1, 1 << 16, &wholeError);
    const QByteArray pieces = decode(packed, 3, 7, &piecesError);
    if (whole != pieces || wholeError != piecesError) {
        std::abort();
    }
    return 0;
}
