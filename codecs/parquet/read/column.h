// Determines the columns of a file, and the cell type that each one is converted to.
//
// Table of conversions: docs/formats/parquet.md. Threads: plain data and pure functions.
#pragma once
#include "base/cell.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/metadata/records.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <set>
#include <vector>

namespace corvanta::parquet {

/// How a file is read. The defaults keep the results of saved graphs unchanged.
struct ReadOptions
{
    /// Convert INT64 to keys (the low 32 bits), not to doubles.
    bool int64ToKey = true;
    /// Accept the newer encodings (encodings.h) and codecs (Brotli, Zstandard, LZ4). Without it, a
    /// column that uses one cannot be read.
    bool extendedEncodings = false;
    /// Convert values according to the annotation of the column.
    bool logicalTypes = false;
    /// Convert booleans to the texts true and false, not to keys.
    bool booleanTexts = false;
    /// Verify the checksums in page headers. Pages without a checksum are accepted.
    bool pageChecksums = false;
    /// Read only the columns in `selection`, in the file's order. If false, read all columns.
    bool selectsColumns = false;
    /// Names of columns; a group and its child joined by a dot.
    QStringList selection;
    /// Rows before the first one that is read, and the number of rows; 0: all that follow. Row
    /// groups outside of the range are not decoded.
    qint64 skippedRows = 0;
    qint64 rowCount = 0;
    /// Skip unreadable columns, as long as one is readable.
    bool skipsUnreadable = false;
    /// Names of columns that are skipped without a reason: another file of the same table did.
    std::set<QString> excluded;
    /// Names of 64-bit integer columns that become texts even if doubles hold their values: another
    /// file of the same table needs texts. Used only with logicalTypes.
    std::set<QString> textIntegers;
    /// Names of 64-bit integer columns whose values were all read and found to fit doubles. Used
    /// only with logicalTypes, where the statistics do not say it.
    std::set<QString> smallIntegers;
};

using CellType = cell::Type;

/// The conversion from a stored value to a cell.
enum class Form : quint8 {
    /// 0 or 1.
    KeyFromBoolean,
    /// The 32 bits unchanged.
    Key32,
    /// The low 32 of 64 bits.
    KeyLow32,
    /// Rounded to the nearest double if the value has more than 53 bits.
    DoubleFromInt64,
    DoubleFromInt96,
    DoubleFromFloat,
    Double,
    Text,
    /// Used only with ReadOptions::booleanTexts.
    TextBoolean,
    // Used only with ReadOptions::logicalTypes. The text forms are those of putLogical().
    DoubleFromInt32,
    DoubleFromUint32,
    DoubleFromUint64,
    DoubleFromHalf,
    /// Used in place of a double if a value needs more than 53 bits.
    TextInt64,
    TextUint64,
    TextDate,
    TextTime,
    TextTimestamp,
    TextInt96,
    TextDecimal,
    TextUuid,
};

/// The cell type that a conversion produces: the type of the column's cells.
CellType cellTypeOf(Form form);

/// Parameters of some conversions.
struct FormDetail
{
    /// Digits after the decimal point, 0 to 1000 (decimals).
    int scale = 0;
    /// Units of the stored number (times, timestamps).
    qint64 ticksPerSecond = 1;
    /// Digits that one unit needs (times, timestamps).
    int fractionDigits = 0;
    /// Whether the text ends with "Z" (timestamps).
    bool isUtc = false;
    /// All digits, as the file says (decimals).
    int precision = 0;
};

/// The values that differ from their cells, because the cell type cannot hold them.
enum class Loss : quint8 {
    None,
    /// Signed 32 bits in a key: negative numbers.
    NegativeKey,
    /// Unsigned 32 bits in a key: the two numbers that mean a missing key.
    MissingKey,
    /// 64 bits in a key: the same two, and all that need more than 32 bits.
    WideKey,
    /// Signed or unsigned 64 bits in a double: those that are rounded.
    Rounded,
    RoundedUnsigned,
    /// 96 bits in a double: those that become another number, not only a rounded one.
    OtherNumber,
    /// Bytes in a text: those that are not UTF-8, and those with zero bytes at the end.
    ChangedText,
};

/// A column that can be read.
struct Column
{
    /// With the names of its groups, separated by dots.
    QString name;
    /// 0-based index of its chunk in each row group.
    size_t chunk = 0;
    /// A value of Physical.
    qint32 physical = 0;
    /// Bytes of a stored value; 0 if they have different lengths.
    int valueBytes = 0;
    /// Whether it may have nulls.
    bool isOptional = false;
    /// Chosen from the physical type, the annotation and the options.
    Form form = Form::Text;
    FormDetail detail;
    /// None also if the file's writer stores such cells in this form.
    Loss loss = Loss::None;
};

/// A column that is left out, and why.
struct SkippedColumn
{
    QString name;
    Fault<Error> fault; ///< The detail names the column; see columnDetail().
};

/// The selected columns of a file.
struct Columns
{
    /// In the file's order.
    std::vector<Column> columns;
    /// Selected names that the file does not have.
    QStringList missing;
    std::vector<SkippedColumn> skipped;
};

/// Determine the columns that the options select. Errors: BadData if a selected column is nested,
/// repeated, of an unknown type, or has chunks that cannot be read; NeedsExtended. With
/// skipsUnreadable it is an error only if no readable column is left.
Result<Columns, Error> selectColumns(const FileMetaData &file, const ReadOptions &options);

/// 64-bit integer columns that become texts with ReadOptions::logicalTypes.
struct TextIntegers
{
    /// Doubles do not hold all values. For ReadOptions::textIntegers.
    QStringList large;
    /// The file has no statistics that say so; the values may be small.
    QStringList unknown;
};
TextIntegers textIntegersOf(const FileMetaData &file);

/// Doubles hold all integers up to this one, and print them with all digits.
inline constexpr qint64 kMaxExactInteger = qint64(1) << 53;

/// The text "column 'x': why", the detail of faults that concern one column.
QString columnDetail(const QString &column, const QString &why);

} // namespace corvanta::parquet
