// corvanta/meta_info.h
// What a column holds and how a table is sorted; both travel with the rows.
#pragma once
#include "base/cell.h"
#include "corvanta/export.h"

#include <QString>
#include <QVector>

/// The meta-type of one column.
class MetaInfo
{
public:
    /// Letter codes of the column types.
    enum MetaTypeColumn : char {
        Float = 'F',   ///< IEEE double; missing: all bits one
        Key = 'K',     ///< 32-bit unsigned; missing: 0xFFFFFFFE, 0xFFFFFFFF
        Unknown = 'U', ///< text whose type is not fixed; missing: length code 0
    };

    MetaInfo() = default;
    MetaInfo(MetaTypeColumn type, int detail)
        : m_type(type)
        , m_detail(detail)
    {
    }
    explicit MetaInfo(corvanta::cell::Type type)
        : m_type(static_cast<MetaTypeColumn>(type))
    {
    }
    MetaTypeColumn type() const { return m_type; }
    corvanta::cell::Type cellType() const { return static_cast<corvanta::cell::Type>(m_type); }
    QString letter() const { return QString(QLatin1Char(static_cast<char>(m_type))); }
    int detail() const { return m_detail; }
    bool operator==(const MetaInfo &other) const = default;

private:
    MetaTypeColumn m_type = Unknown;
    int m_detail = -1;
};

/// One column of a sort order.
struct SortInfos
{
    QString column;
    bool ascending = true;
    bool operator==(const SortInfos &other) const = default;
};

/// Names, types and sort order of a table; shared by all rows of a batch.
struct TableSchema
{
    QVector<QString> names;
    QVector<MetaInfo> types;
    QVector<SortInfos> sortedOn;
    bool operator==(const TableSchema &other) const = default;
};

/// What an output pin delivers.
using PinOutMetaData = TableSchema;
