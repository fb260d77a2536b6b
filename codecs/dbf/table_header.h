// Reads the header of a dBase-family table, which describes its records. Layout:
// docs/formats/dbf.md.
//
// Threads: plain data and pure functions.
#pragma once
#include "base/byte_source.h"
#include "base/cell.h"
#include "base/occurrences.h"
#include "base/result.h"

#include <QByteArray>

#include <vector>

namespace corvanta::dbf {

/// Why a table or its memo file cannot be read.
enum class Error : quint8 {
    /// The file ends inside the header.
    ShortHeader = 1,
    /// The lengths in the header contradict each other.
    BadHeader,
    /// A field has a type that cannot be read.
    UnsupportedField,
    /// The file ends before the last record. The offset is that of the first incomplete record.
    ShortTable,
    /// The source failed.
    Unreadable,
    /// The source of the memo file failed.
    MemoUnreadable,
    /// The memo file does not fit into memory.
    MemoTooLarge,
};

using CellType = cell::Type;

/// The conversion from a field's bytes to a cell.
enum class Conversion : quint8 {
    /// Characters, padded with trailing spaces.
    Text,
    /// Characters of a number or date, padded with spaces on both sides.
    Digits,
    /// Characters of Visual FoxPro; a bit of the null flags says that the last byte is their
    /// number.
    Varying,
    /// Number of a memo block, as digits or as 4 bytes.
    Memo,
    /// One letter, to a key: 1 for T, t, Y, y; 0 for F, f, N, n; missing for any other.
    Logical,
    /// A signed number of 32 bits, to a double.
    Integer,
    /// An unsigned number of 32 bits, to a key.
    Key,
    /// An IEEE double of 64 bits.
    Double,
    /// A signed number of 64 bits, ten-thousandths, to a double.
    Currency,
    /// Julian day and milliseconds, 32 bits each, to a text: 20260131 04:30:05.
    Timestamp,
    // With TableOptions::isoValues:
    /// As Digits. Asterisks alone are missing: the number did not fit, or there was none.
    Number,
    /// Eight digits of a date, to a text: 2026-01-31. Eight zeros are missing; other bytes are
    /// kept.
    IsoDate,
    /// As Timestamp, in the form 2026-01-31T04:30:05.
    IsoTimestamp,
    /// As Logical, to the text true or false.
    Truth,
};

/// A field of the records that becomes a column.
struct Field
{
    /// As stored, up to the first NUL. In the encoding of the table's texts.
    QByteArray name;
    /// The type letter.
    char type = 0;
    /// Number of bytes in each record.
    int length = 0;
    /// Offset of the first byte in the record. Byte 0 of the record is the deletion flag.
    int offset = 0;
    /// Byte 18 of the descriptor, which Visual FoxPro uses.
    uchar flags = 0;
    // Numbers of bits in the null flags of a record; -1: none.
    int nullBit = -1;   ///< the value is missing
    int lengthBit = -1; ///< the last byte is the length of the value
    /// The type of the column's cells. Follows from `conversion`.
    CellType cell = CellType::Text;
    Conversion conversion = Conversion::Text;
};

/// The content of a header. The lengths are checked; the record count may be wrong, because
/// programs that stop in the middle of an update leave the old one.
struct TableHeader
{
    /// Byte 0 of the file. Names the program and, in some bits, the presence of a memo file.
    uchar version = 0;
    /// Whether the version is one of FoxPro's.
    bool isFoxPro = false;
    /// Whether the version is one of Visual FoxPro's, and all types are read.
    bool isVisualFoxPro = false;
    /// Whether the layout is that of dBase 7.
    bool isLevel7 = false;
    /// Byte 29, which names an encoding (see encodingOfMark()); 0: none.
    uchar encodingMark = 0;
    /// Number of records, deleted ones included.
    quint32 recordCount = 0;
    /// Offset of the first record. May be larger than the descriptors need: some programs store
    /// more data there.
    int headerBytes = 0;
    /// Size of a record, with the deletion flag.
    int recordBytes = 0;
    /// The fields that become columns, in file order.
    std::vector<Field> fields;
    // The place of the null flags in a record of Visual FoxPro; 0 bytes: there are none.
    int nullFlagsAt = 0;
    int nullFlagsBytes = 0;
    /// The fields without a column: their types are unknown, or objects. The place is name and
    /// type.
    Occurrences skippedFields;
    /// The part of a record that all descriptors cover, with the deletion flag.
    int fieldBytes = 0;

    bool hasMemoFields() const;
    /// Whether the header announces a memo file.
    bool announcesMemoFile() const;
};

/// How a table is read.
struct TableOptions
{
    /// The longer header and descriptors of dBase 7. If the descriptors match the record length
    /// only in the other layout, that one is used.
    bool isLevel7 = false;
    /// Read amounts of currency and the null flags and varying texts of Visual FoxPro, and skip
    /// objects and pictures. Off: a table with amounts, objects or pictures is refused.
    bool readsAllTypes = false;
    /// Dates and times are texts in the form of ISO 8601, and logical values the texts true and
    /// false. Off: the digits of a date, a date and time without signs, and the keys 1 and 0.
    bool isoValues = false;
};

/// Read the header. The source is at its start; afterwards it is at the first record.
/// Errors: ShortHeader, BadHeader, UnsupportedField (the detail is the type letter and the field's
/// name), Unreadable.
Result<TableHeader, Error> readTableHeader(ByteSource &source, const TableOptions &options);

} // namespace corvanta::dbf
