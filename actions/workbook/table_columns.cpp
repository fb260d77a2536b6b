// Columns have the name in the header, or the letters of their column in the sheet. Names that are
// there twice get numbers, so that columns of several sheets can be joined by name.
#include "actions/workbook/table_columns.h"

#include "actions/shared/tables/unique_names.h"
#include "base/counted.h"
#include "codecs/sheet/cell_text.h"
#include "codecs/sheet/sheet_writer.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// More empty columns in a row than this are left out: one stray cell far to the right would
/// otherwise make thousands of columns.
constexpr size_t kMaxEmptyColumns = 256;

/// Whether the task leaves the column out; its list is empty unless hidden columns are skipped.
bool isHidden(const SheetTask &task, int column)
{
    return std::ranges::any_of(task.hiddenColumns, [column](const sheet::CellArea &area) {
        return column >= area.firstColumn && column <= area.lastColumn;
    });
}

/// The name of a column without one in the header: A, B, ... AA.
QString lettersOf(int column)
{
    return QString::fromLatin1(sheet::columnLetters(column));
}

/// The type of a column. After a sample, a fraction can still follow: it is then not a key.
cell::Type safeType(quint16 content, bool isComplete)
{
    const cell::Type type = typeOf(content);
    return !isComplete && type == cell::Type::Key ? cell::Type::Double : type;
}

/// The indexes of the columns, without wide gaps of empty ones.
void chooseColumns(const SheetTask &task, size_t count, TaskColumns *columns)
{
    std::vector<size_t> empty;
    for (size_t i = 0; i < count; ++i) {
        const ScannedColumn column =
            i < task.scan.columns.size() ? task.scan.columns[i] : ScannedColumn();
        if (isHidden(task, task.columnOf(i))) {
            continue;
        }
        empty.push_back(i);
        if (column.name.isEmpty() && column.content == 0 && i + 1 < count) {
            continue;
        }
        // `empty` ends with the column that is not.
        if (empty.size() - 1 > kMaxEmptyColumns) {
            columns->firstLeftOut = columns->leftOut == 0 ? lettersOf(task.columnOf(empty.front()))
                                                          : columns->firstLeftOut;
            columns->leftOut += static_cast<int>(empty.size()) - 1;
            empty = {i};
        }
        columns->scanned.insert(columns->scanned.end(), empty.begin(), empty.end());
        empty.clear();
    }
    columns->scanned.insert(columns->scanned.end(), empty.begin(), empty.end());
}

} // namespace

TaskColumns columnsOf(const SheetTask &task)
{
    TaskColumns columns;
    const sheet::CellArea &area = task.options.walk.area;
    // A range with a last column has all its columns, the others those up to the last cell.
    const bool isBounded = area.lastColumn < static_cast<int>(sheet::kMaxColumns);
    const size_t count = isBounded ? static_cast<size_t>(area.lastColumn - area.firstColumn) + 1
                                   : task.scan.columns.size();
    chooseColumns(task, count, &columns);
    shared::UniqueNames unique;
    for (const size_t i : columns.scanned) {
        const QString name = i < task.scan.columns.size() ? task.scan.columns[i].name : QString();
        columns.names << unique.add(name.isEmpty() ? lettersOf(task.columnOf(i)) : name);
    }
    return columns;
}

std::optional<SheetMismatch> TableColumns::add(const SheetTask &task, const TaskColumns &columns,
                                               bool isStrict)
{
    using Kind = SheetMismatch::Kind;
    const bool isFirst = m_columns.empty();
    const auto count = static_cast<qsizetype>(m_columns.size());
    if (!isFirst && isStrict && !columns.names.isEmpty() && columns.names.size() != count) {
        return SheetMismatch{Kind::Count, 0, QString::number(count),
                             counted(columns.names.size(), u"column"_s)};
    }
    m_isComplete = m_isComplete && task.scan.isComplete;
    for (qsizetype i = 0; i < columns.names.size(); ++i) {
        const QString &name = columns.names[i];
        int index = indexOf(name);
        if (!isFirst && isStrict && index != i) {
            return SheetMismatch{Kind::Name, i, m_columns[static_cast<size_t>(i)].name, name};
        }
        if (index < 0) {
            index = static_cast<int>(m_columns.size());
            m_columns.push_back({name});
            m_byName.emplace(name, index);
        }
        const size_t scannedIndex = columns.scanned[static_cast<size_t>(i)];
        if (scannedIndex >= task.scan.columns.size()) {
            continue;
        }
        const ScannedColumn &scanned = task.scan.columns[scannedIndex];
        m_columns[static_cast<size_t>(index)].content |= scanned.content;
        if (scanned.firstNew >= 0 && typeOf(scanned.content) == cell::Type::Text) {
            m_lateTexts.push_back({name, u"row %1 of the sheet '%2'"_s.arg(
                                             QString::number(scanned.firstNew + 1), task.name)});
        }
    }
    return std::nullopt;
}

void TableColumns::decideTypes(bool allText)
{
    for (Column &column : m_columns) {
        column.type = allText ? cell::Type::Text : safeType(column.content, m_isComplete);
    }
}

std::vector<int> TableColumns::targetsOf(const SheetTask &task, const TaskColumns &columns,
                                         bool isStrict) const
{
    size_t count = task.scan.columns.size();
    for (const size_t i : columns.scanned) {
        count = std::max(count, i + 1);
    }
    std::vector<int> targets(count, -1);
    for (qsizetype i = 0; i < columns.names.size(); ++i) {
        targets[columns.scanned[static_cast<size_t>(i)]] =
            isStrict ? static_cast<int>(i) : indexOf(columns.names[i]);
    }
    return targets;
}

TableSchema TableColumns::schema() const
{
    TableSchema schema;
    for (const Column &column : m_columns) {
        schema.names << column.name;
        schema.types << MetaInfo(column.type);
    }
    return schema;
}

} // namespace corvanta
