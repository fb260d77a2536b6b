// Any bytes as a compound file: its streams are no longer than the file, and do not depend on how
// the bytes arrive or are sought.
#include "codecs/xls/compound_file.h"
#include "fuzz/support/require.h"

using namespace corvanta;
using namespace corvanta::xls;

namespace {

QByteArray readAll(CompoundStream &stream, qint64 from)
{
    QByteArray bytes(stream.size() - from, '\0');
    require(stream.seek(from));
    require(readFully(stream, bytes.data(), bytes.size()) == bytes.size());
    char more = 0;
    require(stream.read(&more, 1) == 0);
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    MemorySource whole(bytes);
    MemorySource pieces(bytes, 5);
    auto file = CompoundFile::open(whole);
    auto again = CompoundFile::open(pieces);
    require(static_cast<bool>(file) == static_cast<bool>(again));
    if (!file) {
        return 0;
    }
    for (const QStringView name : {u"Workbook", u"Book", u"EncryptedPackage"}) {
        const auto stream = file->stream(name);
        const auto same = again->stream(name);
        require((stream == nullptr) == (same == nullptr));
        if (stream != nullptr) {
            require(stream->size() <= bytes.size());
            const QByteArray content = readAll(*stream, 0);
            require(content == readAll(*same, 0));
            require(content.sliced(content.size() / 2) == readAll(*stream, content.size() / 2));
        }
    }
    return 0;
}
