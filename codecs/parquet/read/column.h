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
#include <vector>

namespace corvanta::parquet {

/// How a file is read. The defaults keep the results of saved graphs unchanged.
struct ReadOptions
{
    bool int64ToKey = true;         ///< Convert INT64 to keys (the low 32 bits), not to doubles.
    bool extendedEncodings = false; ///< Accept the newer encodings and codecs.
    bool logicalTypes = false;      ///< Convert values according to the annotation of the column.
    bool pageChecksums = false;     ///< Verify the checksums in page headers.
    bool selectsColumns = false;    ///< Read only the columns in `selection`.
    QStringList selection;          ///< Names of columns; a group and its child joined by a dot.
    bool skipsUnreadable = false;   ///< Skip unreadable columns, as long as one is readable.
};

using CellType = cell::Type;

/// The conversion from a stored value to a cell.
enum class Form : quint8 {
    KeyFromBoolean,
    Key32,    ///< The 32 bits unchanged.
    KeyLow32, ///< The low 32 of 64 bits.
    DoubleFromInt64,
    DoubleFromInt96,
    DoubleFromFloat,
    Double,
    Text,
    // Used only with ReadOptions::logicalTypes:
    DoubleFromInt32,
    DoubleFromUint32,
    DoubleFromUint64,
    DoubleFromHalf,
    TextInt64,
    TextUint64,
    TextDate,
    TextTime,
    TextTimestamp,
    TextInt96,
    TextDecimal,
    TextUuid,
};

/// The cell type that a conversion produces.
CellType cellTypeOf(Form form);

/// Parameters of some conversions.
struct FormDetail
{
    int scale = 0;             ///< Digits after the decimal point, 0 to 1000 (decimals).
    qint64 ticksPerSecond = 1; ///< Units of the stored number (times, timestamps).
    int fractionDigits = 0;    ///< Digits that one unit needs (times, timestamps).
    bool isUtc = false;        ///< Whether the text ends with "Z" (timestamps).
};

/// A column that can be read.
struct Column
{
    QString name;            ///< With the names of its groups, separated by dots.
    size_t chunk = 0;        ///< 0-based index of its chunk in each row group.
    qint32 physical = 0;     ///< A value of Physical.
    int valueBytes = 0;      ///< Bytes of a stored value; 0 if they have different lengths.
    bool isOptional = false; ///< Whether it may have nulls.
    Form form = Form::Text;
    FormDetail detail;
};

/// The selected columns of a file.
struct Columns
{
    std::vector<Column> columns; ///< In the file's order.
    QStringList missing;         ///< Selected names that the file does not have.
    QStringList skipped;         ///< columnDetail() of each skipped column.
};

/// Determine the columns that the options select. Errors: BadData if a selected column is nested,
/// repeated, of an unknown type, or has chunks that cannot be read. With skipsUnreadable it is an
/// error only if no readable column is left.
Result<Columns, Error> selectColumns(const FileMetaData &file, const ReadOptions &options);

/// The text "column 'x': why", the detail of faults that concern one column.
QString columnDetail(const QString &column, const QString &why);

} // namespace corvanta::parquet
