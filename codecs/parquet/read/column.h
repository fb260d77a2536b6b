// codecs/parquet/column.h
// The columns of a file: which there are, and as what their values are delivered.
#pragma once
#include "base/cell.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/metadata/records.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace corvanta::parquet {

/// How a file is read. The defaults take what the engine always took, as it always did.
struct ReadOptions
{
    bool int64ToKey = true;         ///< INT64 as keys (their low 32 bits), else as doubles
    bool extendedEncodings = false; ///< more encodings and codecs
    bool logicalTypes = false;      ///< values as what their column's annotation says
    bool pageChecksums = false;     ///< compare pages with the checksums in their headers
    bool selectsColumns = false;    ///< only the columns of `selection`
    QStringList selection;
    bool skipsUnreadable = false; ///< columns that cannot be read are left out, if others can
};

using CellType = cell::Type;

/// From stored value to cell.
enum class Form : quint8 {
    KeyFromBoolean,
    Key32,    ///< the 32 bits as they are
    KeyLow32, ///< of 64 bits the low 32
    DoubleFromInt64,
    DoubleFromInt96,
    DoubleFromFloat,
    Double,
    Text,
    // With logical types:
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

CellType cellTypeOf(Form form);

/// Details that some forms need.
struct FormDetail
{
    int scale = 0;             ///< of decimals
    qint64 ticksPerSecond = 1; ///< of times
    int fractionDigits = 0;    ///< of times
    bool isUtc = false;        ///< of timestamps
};

/// A column that can be read.
struct Column
{
    QString name;
    size_t chunk = 0; ///< index among the chunks of each row group
    qint32 physical = 0;
    int valueBytes = 0; ///< of a stored value; 0: of varying length
    bool isOptional = false;
    Form form = Form::Text;
    FormDetail detail;
};

struct Columns
{
    std::vector<Column> columns; ///< in the file's order
    QStringList missing;         ///< selected, but not in the file
    QStringList skipped;         ///< left out: columnDetail() of each
};

/// The columns that the options select. Errors: BadData for a selected column that is nested,
/// repeated or of an unknown type, or whose chunks cannot be read, unless it is left out.
Result<Columns, Error> selectColumns(const FileMetaData &file, const ReadOptions &options);

/// "column 'x': why".
QString columnDetail(const QString &column, const QString &why);

} // namespace corvanta::parquet
