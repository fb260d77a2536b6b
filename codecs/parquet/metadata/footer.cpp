// The end of a file (parquet-format, README.md, section "File format"):
//
//   bytes   content
//   length  FileMetaData, a Thrift compact record
//        4  length, unsigned, little-endian
//        4  "PAR1"; "PARE" if the metadata is encrypted (Encryption.md, section 5.4)
#include "codecs/parquet/metadata/footer.h"

#include "base/bytes.h"

#include <QLatin1StringView>

#include <array>
#include <new>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

constexpr qint64 kTrailerBytes = 8;
constexpr auto kNotParquet = "it is not a Parquet file, or it is truncated"_L1;

/// Where the metadata is in the file.
struct MetaDataRange
{
    qint64 begin;
    qint64 bytes;
};

Result<MetaDataRange, Error> readTrailer(ByteSource &source)
{
    const qint64 size = source.size();
    if (size < kTrailerBytes) {
        return Fault{Error::Unreadable, u"the file is shorter than its trailer"_s, size};
    }
    std::array<uchar, kTrailerBytes> trailer{};
    const bool isRead = source.seek(size - kTrailerBytes) &&
                        readFully(source, trailer.data(), kTrailerBytes) == kTrailerBytes;
    if (isRead && std::memcmp(trailer.data() + 4, "PARE", 4) == 0) {
        return Fault{Error::BadFooter, u"it is encrypted"_s, size - kTrailerBytes};
    }
    if (!isRead || std::memcmp(trailer.data() + 4, "PAR1", 4) != 0) {
        return Fault{Error::BadFooter, kNotParquet, size - kTrailerBytes};
    }
    const qint64 length = loadLE<quint32>(trailer.data());
    const qint64 begin = size - kTrailerBytes - length;
    if (begin < 0 || !source.seek(begin)) {
        return Fault{Error::BadFooter, kNotParquet, size - kTrailerBytes};
    }
    return MetaDataRange{begin, length};
}

} // namespace

Result<FooterBytes, Error> readFooterBytes(ByteSource &source)
{
    const auto range = readTrailer(source);
    if (!range) {
        return range.fault();
    }
    const auto [begin, length] = *range;
    // The length is a claim of the file, up to 4 GiB. Its failure is not the end of the program.
    // Not a vector, which would set all bytes to 0 first.
    FooterBytes footer{
        std::unique_ptr<uchar[]>(new (std::nothrow) uchar[static_cast<size_t>(length)]), length,
        begin};
    if (!footer.bytes) {
        return Fault{Error::NoMemory, u"not enough memory for the metadata"_s, begin};
    }
    if (readFully(source, footer.bytes.get(), length) != length) {
        return Fault{Error::ShortRead, u"the metadata cannot be read"_s, begin};
    }
    return footer;
}

Result<FileMetaData, Error> readFooter(ByteSource &source)
{
    const auto footer = readFooterBytes(source);
    if (!footer) {
        return footer.fault();
    }
    CompactReader reader(footer->span());
    FileMetaData metaData;
    if (!readRecord(reader, metaData)) {
        return Fault{Error::BadThrift, u"the metadata is damaged"_s, footer->begin};
    }
    return metaData;
}

} // namespace corvanta::parquet
