// corvanta/one_row.h
// One row on a pin: cells, column names, types and sort order.
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

/// A row that is read (a view of a batch, valid until the next row of its pin is taken) or filled.
///
/// A filled row starts with all cells missing. Cells set with setCol() may lie anywhere: they are
/// copied when the row is handed on, unless they come from the pin's own buffer
/// (ActionItem::bufferForOutputPin), where they already lie where they are needed.
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
    /// Cell `i` as UTF-16 text: the length, and where it is. A missing cell has length 0 and a null
    /// pointer. The text of a number is valid until the next call on this row.
    int col(int i, const unsigned short **out) const;
    /// The same as a view.
    QStringView textView(int i) const
    {
        const unsigned short *units = nullptr;
        const int n = col(i, &units);
        return {units, n};
    }
    /// Numeric value; `ok` (may be null) is false when the cell is missing or not a number.
    double colAsDouble(int i, bool *ok) const;
    /// Integer key value; `ok` (may be null) is false when the cell is missing or not such a
    /// number.
    unsigned int colAsKey(int i, bool *ok) const;
    /// Like col(), but numbers that are equal have equal texts whatever their column's type.
    QString colForHash(int i) const;

    int numberOfColumns() const { return static_cast<int>(m_schema->names.size()); }
    QString colName(int i) const { return m_schema->names[i]; }
    MetaInfo getMetaType(int i) const { return m_schema->types[i]; }
    /// The first column with that name (exact); -1 when absent.
    int getIndexOfColumn(const QString &name) const;
    /// The cells themselves (base/cell.h), one pointer per column.
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

    // Filling. Describe the columns before the first row; a change later starts a new batch.

    void setCol(int i, const unsigned char *bytes)
    {
        if (m_view) {
            ownCells();
        }
        m_own[static_cast<size_t>(i)] = bytes;
    }
    /// Adds or removes columns at the end; new ones are of type Unknown without a name.
    void setNumberOfColumns(int n);
    void setColName(int i, const QString &name);
    void setColName(const QVector<QString> &names);
    void setMetaType(int i, const MetaInfo &type);
    void setMetaData(const QVector<MetaInfo> &types);
    void setSortInfos(const QVector<SortInfos> &sortedOn);
    /// Take over columns and cells of `row`. Between pins this costs nothing per cell: the cells
    /// are shared until one is changed.
    void copyFrom(const OneRow *row);
    /// Take over the columns of `row`, not its cells.
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
    const unsigned char *const *m_cells = nullptr; // of m_own, or of m_batch when m_view is set
    std::vector<const unsigned char *> m_own;
    std::shared_ptr<const corvanta::RowBatch> m_batch; // of a view
    int m_rowInBatch = 0;
    bool m_view = false;
    mutable std::array<char16_t, 32> m_numberText{};
};
