// codecs/parquet/error.h
// Why a Parquet file cannot be read or written.
#pragma once
#include "base/result.h"

namespace corvanta::parquet {

enum class Error : quint8 {
    BadData = 2,   ///< a column that is not supported, or a damaged page; the detail says which
    BadFooter = 3, ///< no Parquet trailer, or it points outside the file
    NoMemory = 4,
    ShortRead = 5,
    BadThrift = 11,   ///< the footer's bytes are no metadata
    Unreadable = 12,  ///< shorter than a trailer, or its size is not known
    TextTooLong = 13, ///< a text that does not fit a page; the detail names the column
    WriteFailed = 14,
};

} // namespace corvanta::parquet
