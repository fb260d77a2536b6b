// Reads the header of a dBase-family table, which describes its records. Layout:
// docs/formats/dbf.md.
//
// Threads: plain data and pure functions.
#pragma once
#include "base/byte_source.h"
#include "base/cell.h"
#include "base/result.h"

#include <QByteArray>

#include <vector>

namespace corvanta::dbf {

enum class Error : quint8 {
    ShortHeader = 1,  ///< The file ends inside the header.
    BadHeader,        ///< The lengths in the header contradict each other.
    UnsupportedField, ///< A field has a type that cannot be read.
    ShortTable,       ///< The file ends before the last record. The offset is its start.
    Unreadable,       ///< The source failed.
    MemoUnreadable,   ///< The source of the memo file failed.
    MemoTooLarge,     ///< The memo file does not fit into memory.
};

using CellType = cell::Type;

/// The conversion from a field's bytes to a cell.
enum class Conversion : quint8 {
    Text,      ///< Characters, padded with trailing spaces.
    Digits,    ///< Characters of a number or date, padded with spaces on both sides.
    Memo,      ///< Number of a memo block, as digits or as 4 bytes.
    Logical,   ///< One letter, to a key.
    Integer,   ///< 32 bits, to a double.
    Key,       ///< 32 bits, to a key.
    Double,    ///< 64 bits.
    Timestamp, ///< Julian day and milliseconds, 32 bits each, to a text.
};

struct Field
{
    QByteArray name; ///< As stored, up to the first NUL.
    char type = 0;   ///< The type letter.
    int length = 0;  ///< In bytes.
    int offset = 0;  ///< In the record. Byte 0 of the record is the deletion flag.
    CellType cell = CellType::Text;
    Conversion conversion = Conversion::Text;
};

/// The content of a header. The lengths are checked; the record count may be wrong.
struct TableHeader
{
    uchar version = 0;         ///< Byte 0 of the file.
    bool isFoxPro = false;     ///< Whether the version is one of FoxPro's.
    bool isLevel7 = false;     ///< Whether the layout is that of dBase 7.
    quint32 recordCount = 0;   ///< Number of records, deleted ones included.
    int headerBytes = 0;       ///< Offset of the first record.
    int recordBytes = 0;       ///< With the deletion flag.
    std::vector<Field> fields; ///< The fields that become columns, in file order.

    bool hasMemoFields() const;
    /// Whether the header announces a memo file.
    bool announcesMemoFile() const;
};

/// Read the header. The source is at its start; afterwards it is at the first record. `isLevel7`
/// selects the longer header and descriptors of dBase 7. If the descriptors match the record length
/// only in the other layout, that one is used.
/// Errors: ShortHeader, BadHeader, UnsupportedField (the detail is the type letter and the field's
/// name), Unreadable.
Result<TableHeader, Error> readTableHeader(ByteSource &source, bool isLevel7);

} // namespace corvanta::dbf
