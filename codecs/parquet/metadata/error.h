// The reasons why a Parquet file cannot be read or written.
#pragma once
#include "base/result.h"

namespace corvanta::parquet {

/// A fault's detail is a text for the user.
enum class Error : quint8 {
    /// An unsupported column or a damaged page. The detail names it.
    BadData = 2,
    /// There is no Parquet trailer, or it points outside the file.
    BadFooter = 3,
    /// There is not enough memory, or a compression library failed.
    NoMemory = 4,
    /// The metadata cannot be read completely, or the system refuses to read a page.
    ShortRead = 5,
    /// The bytes of a record are not a valid Thrift record.
    BadThrift = 11,
    /// The file is shorter than a trailer, or its size is unknown.
    Unreadable = 12,
    /// A text does not fit a page. The detail is the column's name.
    TextTooLong = 13,
    /// The sink failed, for example on a full disk.
    WriteFailed = 14,
    /// A column needs ReadOptions::extendedEncodings. The detail names the column and the encoding
    /// or codec.
    NeedsExtended = 15,
    /// A value is not of the stored type of its column. The detail is the column's name, the offset
    /// its index among the written columns.
    WrongValue = 16,
};

} // namespace corvanta::parquet
