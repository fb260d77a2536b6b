// Reads the metadata at the end of a Parquet file. Layout: footer.cpp.
#pragma once
#include "base/byte_source.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/metadata/records.h"

namespace corvanta::parquet {

/// The encoded metadata of a file, for code that keeps what it does not know.
struct FooterBytes
{
    std::unique_ptr<uchar[]> bytes;
    qint64 size = 0;
    qint64 begin = 0; ///< offset in the file: everything else is before it

    std::span<const uchar> span() const { return {bytes.get(), static_cast<size_t>(size)}; }
};

/// Read the metadata of a file without decoding it. Otherwise as readFooter(). Errors: the same
/// without BadThrift.
Result<FooterBytes, Error> readFooterBytes(ByteSource &source);

/// Read the metadata of a file. The source must be able to seek; its position afterwards is
/// undefined. Does not check the "PAR1" at the start of the file.
/// Errors: Unreadable (shorter than 8 bytes, or of unknown size), BadFooter (no trailer, or the
/// metadata is longer than the file), NoMemory, ShortRead, BadThrift.
Result<FileMetaData, Error> readFooter(ByteSource &source);

} // namespace corvanta::parquet
