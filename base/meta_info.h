// The meta-type of a column: what its cells hold.
#pragma once
#include "base/cell.h"

#include <QString>

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
