// codecs/parquet/footer.h
// The metadata at the end of a Parquet file.
#pragma once
#include "base/byte_source.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/metadata/records.h"

namespace corvanta::parquet {

/// Read the metadata. Errors: Unreadable (shorter than 8 bytes or of unknown size), BadFooter (no
/// trailer, or it does not fit the file), NoMemory, ShortRead, BadThrift.
Result<FileMetaData, Error> readFooter(ByteSource &source);

} // namespace corvanta::parquet
