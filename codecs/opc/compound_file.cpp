// A compound file (MS-CFB, 2.2) begins with the signature D0 CF 11 E0 A1 B1 1A E1. Its directory,
// which can be anywhere in the file, names the streams in UTF-16LE; that of an encrypted package is
// "EncryptedPackage" (MS-OFFCRYPTO, 2.3.4.4).
#include "codecs/opc/compound_file.h"

#include <QByteArray>

#include <algorithm>

namespace corvanta::opc {

CompoundFile compoundFileKind(ByteSource &source)
{
    static const QByteArray kSignature = QByteArray::fromHex("D0CF11E0A1B11AE1");
    static const QByteArray kStream =
        QByteArray::fromHex("45006E0063007200790070007400650064005000610063006B00610067006500");
    constexpr qint64 kMaxBytes = qint64(64) << 20;
    constexpr qsizetype kPieceBytes = 65536;
    QByteArray kept; // the end of the piece before, because the name may span two pieces
    for (qint64 offset = 0; offset < kMaxBytes; offset += kPieceBytes) {
        QByteArray piece(kPieceBytes, '\0');
        piece.truncate(std::max<qint64>(0, readFully(source, piece.data(), kPieceBytes)));
        if (offset == 0 && !piece.startsWith(kSignature)) {
            return CompoundFile::No;
        }
        kept += piece;
        if (kept.contains(kStream)) {
            return CompoundFile::Encrypted;
        }
        if (piece.size() < kPieceBytes) {
            break;
        }
        kept = kept.last(kStream.size());
    }
    return CompoundFile::Other;
}

} // namespace corvanta::opc
