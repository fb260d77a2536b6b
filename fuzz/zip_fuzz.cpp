// Any bytes as a package: whole reads and streams give the same content, and copies do too.
#include "codecs/zip/package_writer.h"
#include "fuzz/support/require.h"

using namespace corvanta;
using namespace corvanta::zip;

/// A member that is taken as stored bytes, and one that is compressed again, have the content.
static void checkRaw(PackageReader &reader, const Member &member,
                     const Result<QByteArray, Error> &whole)
{
    MemorySink sink;
    PackageWriter writer(sink, {{}, 0});
    const auto raw = reader.readRaw(member);
    require(bool(raw) == bool(whole));
    const bool isAdded = raw && writer.addRaw(*raw);
    const bool isDeflated = whole && writer.addRaw(deflateMember("again", *whole));
    require(bool(writer.close()));
    MemorySource copy(sink.bytes());
    const auto back = PackageReader::open(copy);
    require(!isAdded || *(*back)->readWhole(member.name) == *whole);
    require(!isDeflated || *(*back)->readWhole("again") == *whole);
}

static void checkMember(PackageReader &reader, const Member &member, qint64 pieceBytes)
{
    const auto whole = reader.readWhole(member);
    const auto stream = reader.openStream(member);
    require(bool(stream) || !whole);
    QByteArray pieces;
    QByteArray piece(pieceBytes, '\0');
    qint64 got = stream ? (*stream)->read(piece.data(), pieceBytes) : -1;
    for (; got > 0; got = (*stream)->read(piece.data(), pieceBytes)) {
        pieces.append(piece.constData(), got);
    }
    require(bool(whole) == (got == 0) && (!whole || *whole == pieces));

    checkRaw(reader, member, whole);
    MemorySink sink;
    PackageWriter writer(sink, {{}, 0});
    const bool isCopied = bool(writer.copyRaw(reader, member));
    require(bool(writer.close()));
    require(isCopied == bool(whole) || member.name.isEmpty());
    MemorySource copy(sink.bytes());
    const auto back = PackageReader::open(copy);
    require(bool(back) && (*back)->members().size() == (isCopied ? 1 : 0));
    require(!isCopied || *(*back)->readWhole(member.name) == *whole);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    const qint64 pieceBytes = 1 + data[0] % 64;
    MemorySource source(QByteArrayView(data, static_cast<qsizetype>(size)), pieceBytes);
    const auto reader = PackageReader::open(source);
    constexpr size_t kMaxMembers = 20;
    for (size_t i = 0; reader && i < std::min(kMaxMembers, (*reader)->members().size()); ++i) {
        checkMember(**reader, (*reader)->members()[i], pieceBytes);
    }
    return 0;
}
