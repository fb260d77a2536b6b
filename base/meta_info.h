// The meta-type of a column: what its cells hold.
//
// Part of the interface between actions and the host, and therefore outside the namespace. Layout
// of the cells: base/cell.h. Threads: plain data.
#pragma once
#include "base/cell.h"

#include <QString>

/// The meta-type of one column. A default-constructed one is Unknown.
class MetaInfo
{
public:
    /// Letter codes of the column types. They have the values of cell::Type, so that cellType() is
    /// a cast.
    enum MetaTypeColumn : char {
        /// IEEE double. All bits one means missing; every other NaN is a value.
        Float = 'F',
        /// 32-bit unsigned number. 0xFFFFFFFE and 0xFFFFFFFF mean missing.
        Key = 'K',
        /// Text whose type is not fixed. Length code 0 means missing, 1 an empty text.
        Unknown = 'U',
    };

    MetaInfo() = default;
    /// `detail` is kept for the caller; nothing here interprets it.
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
    /// The type as the functions of base/cell.h expect it.
    corvanta::cell::Type cellType() const { return static_cast<corvanta::cell::Type>(m_type); }
    /// The letter code as a text of one character.
    QString letter() const { return QString(QLatin1Char(static_cast<char>(m_type))); }
    /// The detail given to the constructor; -1 if none was given.
    int detail() const { return m_detail; }
    /// Compares type and detail.
    bool operator==(const MetaInfo &other) const = default;

private:
    MetaTypeColumn m_type = Unknown;
    int m_detail = -1;
};
