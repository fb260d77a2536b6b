// The content of a sheet as text, to compare two readings of one workbook.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "fuzz/support/require.h"

namespace corvanta::sheet {

/// Whether a reader must deliver rows in ascending order.
enum class RowOrder { Any, Ascending };

/// Append a row, whose columns must ascend.
inline void addRow(const SheetRow &row, QByteArray *content)
{
    int before = -1;
    for (const SheetCell &cell : row.cells) {
        require(cell.column > before);
        before = cell.column;
        *content += QByteArray::number(row.number) + ',' + QByteArray::number(cell.column) + ' ';
        *content += QByteArray::number(static_cast<int>(cell.kind));
        if (cell.kind == CellKind::Number || cell.kind == CellKind::Boolean) {
            *content += QByteArray::number(static_cast<int>(cell.form)) +
                        QByteArray::number(cell.number, 'g', 17);
        }
        for (const char16_t unit : cell.text) {
            *content += QByteArray::number(unit, 16);
        }
    }
}

/// All rows of sheet `index`, and the fault that ends them, if any.
inline QByteArray contentOf(WorkbookReader &workbook, size_t index, RowOrder order)
{
    auto rows = workbook.openSheet(index);
    if (!rows) {
        return rows.fault().detail.toUtf8();
    }
    QByteArray content;
    SheetRow row;
    for (qint64 before = -1;; before = row.number) {
        const auto found = (*rows)->next(&row);
        if (!found || !*found) {
            return content + (found ? QByteArray() : found.fault().detail.toUtf8());
        }
        require(order == RowOrder::Any || row.number > before);
        addRow(row, &content);
    }
}

} // namespace corvanta::sheet
