// The reasons why a Parquet file cannot be read or written.
#pragma once
#include "base/result.h"

namespace corvanta::parquet {

/// A fault's detail is a text for the user.
enum class Error : quint8 {
    BadData = 2,   ///< An unsupported column or a damaged page. The detail names it.
    BadFooter = 3, ///< There is no Parquet trailer, or it points outside the file.
    NoMemory = 4,
    ShortRead = 5,    ///< The metadata cannot be read completely.
    BadThrift = 11,   ///< The bytes of a record are not a valid Thrift record.
    Unreadable = 12,  ///< The file is shorter than a trailer, or its size is unknown.
    TextTooLong = 13, ///< A text does not fit a page. The detail is the column's name.
    WriteFailed = 14, ///< The sink failed, for example on a full disk.
};

} // namespace corvanta::parquet
