// The columns of the table that the sheets of all files make together.
//
// First all sheets are added, then the types are decided, so that each type can hold the cells of
// every sheet. After that each sheet asks for the targets of its cells. Columns count from 0, in
// the scan of a sheet or in the table.
#pragma once
#include "actions/workbook/sheet_task.h"
#include "corvanta/meta_info.h"

#include <QString>

#include <optional>
#include <unordered_map>
#include <vector>

namespace corvanta {

/// The columns of a task that are delivered.
struct TaskColumns
{
    std::vector<size_t> scanned; ///< indexes in the scan
    QStringList names;           ///< unique
    int leftOut = 0;             ///< empty columns of wide gaps
    QString firstLeftOut;        ///< letters of the first one
};

/// Columns with a name or a cell, and the empty ones between them unless they are many. Columns
/// without a name get their letters, and equal names get a number, so that all names differ.
TaskColumns columnsOf(const SheetTask &task);

/// How the columns of a sheet differ from those of the first one.
struct SheetMismatch
{
    enum class Kind : quint8 { Count, Name };
    Kind kind = Kind::Count;
    qsizetype column = 0; ///< from 0; of Name
    QString first;        ///< number of columns, or the name, in the first sheet
    QString found;        ///< the same in this sheet: "1 column", or a name
};

/// A column whose type the cells after the sample have changed to text.
struct LateText
{
    QString column;
    QString place; ///< "row 12 of the sheet 'Data'"
};

/// Threads: one at a time.
class TableColumns
{
public:
    /// A column of the table; the type is valid after decideTypes().
    struct Column
    {
        QString name;
        quint16 content = 0; ///< a set of ColumnContent, of all sheets
        cell::Type type = cell::Type::Text;
    };

    /// Add the columns of a sheet. Strict: they must be those of the first one; otherwise columns
    /// are joined by name. Sheets without any columns match all others.
    std::optional<SheetMismatch> add(const SheetTask &task, const TaskColumns &columns,
                                     bool isStrict);
    /// Decide the types, once, after the last add(). `allText`: all are texts.
    void decideTypes(bool allText);

    /// In the order in which their names appeared first.
    const std::vector<Column> &columns() const { return m_columns; }
    /// Where the cells of the task go: by their index in the scan, the column, or -1.
    std::vector<int> targetsOf(const SheetTask &task, const TaskColumns &columns,
                               bool isStrict) const;
    /// Names and types, in the order of the table. Call decideTypes() first.
    TableSchema schema() const;
    /// For a warning; complete when all sheets are added.
    const std::vector<LateText> &lateTexts() const { return m_lateTexts; }

private:
    /// The column with that name; -1: none.
    int indexOf(const QString &name) const
    {
        const auto found = m_byName.find(name);
        return found == m_byName.end() ? -1 : found->second;
    }

    std::vector<Column> m_columns;
    std::unordered_map<QString, int> m_byName;
    bool m_isComplete = true; // all scans are
    std::vector<LateText> m_lateTexts;
};

} // namespace corvanta
