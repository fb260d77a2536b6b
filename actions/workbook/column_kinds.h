// Finds out why a column is text: a few values that differ from all the others.
//
// One text among a million numbers makes its column a text column. The user can correct that cell
// if a message names it. Only the first value of each kind is kept.
#pragma once
#include "actions/workbook/cell_values.h"

#include <QString>

#include <array>
#include <optional>

namespace corvanta {

/// A text column of which at least two thirds are numbers, dates or booleans.
struct MixedColumn
{
    size_t column = 0; ///< index in the scan
    QString kind;      ///< "numbers", "dates" or "booleans"
    qint64 count = 0;  ///< values of this kind
    qint64 values = 0; ///< all values of the column
    QString other;     ///< the first value of another kind, cut if it is long
    QString place;     ///< its cell, such as B17
};

/// The kinds of the values of one column. Threads: one at a time.
class ColumnKinds
{
public:
    /// Count a value with this bit of ColumnContent. Returns true for the first one of its kind,
    /// which must then be passed to setFirst().
    bool add(quint16 content) { return m_kinds[kindOf(content)].count++ == 0; }
    /// Keep the first value of a kind for messages. `row` and `column` count from 0 in the sheet.
    void setFirst(quint16 content, qint64 row, int column, const QString &text);

    /// What the column is if a few values make it a text column; its index is not set. Call it when
    /// all values are counted.
    std::optional<MixedColumn> mixed() const;

private:
    struct Kind
    {
        qint64 count = 0;
        qint64 row = 0; // of the first value
        int column = 0;
        QString text = {};
    };
    /// Index in m_kinds.
    static size_t kindOf(quint16 content);

    static constexpr size_t kTexts = 3;
    std::array<Kind, 4> m_kinds; // numbers, dates, booleans, texts
};

} // namespace corvanta
