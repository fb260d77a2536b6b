// One row on a pin: cells, column names, types and sort order.
//
// The layout of a cell depends on the type of its column: 4 bytes for a key, 8 for a double, a
// length code and UTF-16 units for a text (base/cell.h). Every type has a marker for missing cells.
#pragma once
#include "base/cell.h"
#include "base/row_view.h"
#include "corvanta/export.h"
#include "corvanta/meta_info.h"

#include <QString>
#include <QVector>

#include <array>
#include <memory>
#include <vector>

namespace corvanta {
class OutputPin;
class InputPin;
struct RowBatch;
} // namespace corvanta

/// A row to read (a view of a batch, valid until the next row of its pin is taken) or to fill.
///
/// All cells of a row to fill are missing at first. Cells set with setCol() may be anywhere in
/// memory: they are copied when the row is sent, unless they come from the pin's own buffer
/// (ActionItem::bufferForOutputPin).
/// Threads: one at a time; rows of different pins share nothing.
class CORVANTA_EXPORT OneRow
{
public:
    OneRow();

    // Reading. Column indexes count from 0 and must exist.

    /// Cell `i` as text; null for a missing cell. `buffer` is not needed and may be null.
    QString col(int i, unsigned short *buffer) const;
    /// The same without the buffer.
    QString text(int i) const;
    /// Cell `i` as UTF-16 text: returns the length in units and sets `out` to the first unit. A
    /// missing cell has length 0 and a null pointer. The text of a number is valid until the next
    /// call on this row.
    int col(int i, const unsigned short **out) const;
    /// The same as a view.
    QStringView textView(int i) const
    {
        const unsigned short *units = nullptr;
        const int n = col(i, &units);
        return {units, n};
    }
    /// Numeric value; `ok` (may be null) is set to false if the cell is missing or not a number.
    double colAsDouble(int i, bool *ok) const;
    /// Integer key value; `ok` (may be null) is set to false if the cell is missing or not an
    /// integer from 0 to 4294967295.
    unsigned int colAsKey(int i, bool *ok) const;
    /// Like col(), but equal numbers have equal texts, whatever the type of their column.
    QString colForHash(int i) const;

    // The columns. `names`, types and sort order are those of the schema, without copies.

    int numberOfColumns() const { return static_cast<int>(m_schema->names.size()); }
    QString colName(int i) const { return m_schema->names[i]; }
    MetaInfo getMetaType(int i) const { return m_schema->types[i]; }
    /// Index of the first column with that name (exact), or -1.
    int getIndexOfColumn(const QString &name) const;
    /// The cells (layout: base/cell.h), one pointer per column. Valid as long as the row.
    const unsigned char *const *getAllColForWrite() const { return m_cells; }
    QVector<QString> getColNamesDeep() const { return m_schema->names; }
    QVector<MetaInfo> getMetaDataDeep() const { return m_schema->types; }
    QVector<SortInfos> getSortInfosDeep() const { return m_schema->sortedOn; }
    const QVector<SortInfos> &sortInfos() const { return m_schema->sortedOn; }
    const TableSchema &schema() const { return *m_schema; }
    /// The row as codecs read it. Valid until this row changes.
    corvanta::RowView view() const
    {
        return {m_cells, m_schema->names.constData(), m_schema->types.constData(),
                numberOfColumns()};
    }

    // Filling. Describe the columns before the first row; a later change starts a new batch.

    /// Set cell `i`; `bytes` must stay valid until the row is sent.
    void setCol(int i, const unsigned char *bytes)
    {
        if (m_view) {
            ownCells();
        }
        m_own[static_cast<size_t>(i)] = bytes;
    }
    /// Adds or removes columns at the end; new ones are of type Unknown without a name.
    void setNumberOfColumns(int n);
    // Names and types, of one column or of all. The forms for all columns also set their number.

    void setColName(int i, const QString &name);
    void setColName(const QVector<QString> &names);
    void setMetaType(int i, const MetaInfo &type);
    void setMetaData(const QVector<MetaInfo> &types);
    /// Declare that the rows are sorted; the row does not check it.
    void setSortInfos(const QVector<SortInfos> &sortedOn);
    /// Take over the columns and cells of `row`; a change of the columns is lost. Rows of an input
    /// pin are not copied: the cells are shared until one is changed.
    void copyFrom(const OneRow *row);
    /// Take over the columns of `row`; all cells become missing.
    void copySchemaFrom(const OneRow *row);

private:
    friend class corvanta::OutputPin;
    friend class corvanta::InputPin;

    TableSchema &changeSchema();
    void ownCells();
    void clearCells();
    const unsigned char *missingCell(int i) const;
    int numberText(int i, const unsigned short **out) const;

    std::shared_ptr<const TableSchema> m_schema;
    const unsigned char *const *m_cells = nullptr; // of m_own, or of m_batch if m_view is set
    std::vector<const unsigned char *> m_own;      // null: a missing cell
    // Of a view. Kept afterwards, because cells that were taken over may be in the batch.
    std::shared_ptr<const corvanta::RowBatch> m_batch;
    int m_rowInBatch = 0;
    bool m_view = false;
    // Long enough for the text of any number cell, see cell::putNumberText().
    mutable std::array<char16_t, 32> m_numberText{};
};
