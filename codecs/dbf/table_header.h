// codecs/dbf/table_header.h
// The header of a dBase-family table: what its records look like. Layout: docs/formats/dbf.md.
//
// Threads: one at a time.
#pragma once
#include "base/byte_source.h"
#include "base/cell.h"
#include "base/result.h"

#include <QByteArray>

#include <vector>

namespace corvanta::dbf {

enum class Error : quint8 {
    ShortHeader = 1,  ///< the file ends within the header
    BadHeader,        ///< lengths in the header contradict each other
    UnsupportedField, ///< a field of a type that refuses the file
    ShortTable,       ///< the file ends before the last record (offset = where the record starts)
    Unreadable,       ///< the source failed
    MemoUnreadable,   ///< the memo file's source failed
    MemoTooLarge,     ///< the memo file does not fit into memory
};

using CellType = cell::Type;

/// How a field's bytes become a cell.
enum class Conversion : quint8 {
    Text,      ///< characters; blanks at the end are padding
    Digits,    ///< characters of a number or date; blanks on both sides are padding
    Memo,      ///< number of a memo block, as digits or binary
    Logical,   ///< one letter
    Integer,   ///< 32 bits, to a double
    Key,       ///< 32 bits, to a key
    Double,    ///< 64 bits
    Timestamp, ///< Julian day and milliseconds, 32 bits each
};

struct Field
{
    QByteArray name; ///< as stored, up to the first NUL
    char type = 0;
    int length = 0;
    int offset = 0; ///< in the record; the deletion flag is byte 0
    CellType cell = CellType::Text;
    Conversion conversion = Conversion::Text;
};

struct TableHeader
{
    uchar version = 0;
    bool isFoxPro = false;
    bool isLevel7 = false;
    quint32 recordCount = 0;
    int headerBytes = 0; ///< offset of the first record
    int recordBytes = 0;
    std::vector<Field> fields; ///< those that become columns, in file order

    bool hasMemoFields() const;
    /// Whether the header says that there is a memo file.
    bool announcesMemoFile() const;
};

/// Read the header from the source's start; afterwards the source stands at the first record.
/// `isLevel7`: take the longer header and descriptors of dBase 7. When the descriptors do not make
/// up the record's length that way, but do the other way, the other way is taken.
/// Errors: ShortHeader, BadHeader, UnsupportedField (detail: the type letter and the field's name),
/// Unreadable.
Result<TableHeader, Error> readTableHeader(ByteSource &source, bool isLevel7);

} // namespace corvanta::dbf
