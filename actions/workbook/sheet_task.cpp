// Sheets are chosen first, then the range: a table or a defined name can move the task to another
// sheet. The scan comes last and reads the sheet once, or twice if its rows are not in order.
#include "actions/workbook/sheet_task.h"

#include "codecs/sheet/cell_area.h"
#include "codecs/sheet/row_filters.h"
#include "codecs/sheet/sheet_writer.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Memory for the rows of a sheet that must be sorted.
constexpr qint64 kMaxSortBytes = qint64(256) << 20;
/// Columns of all sheets of a workbook: 256 sheets with cells in their last column.
constexpr size_t kMaxTaskColumns = size_t(4) << 20;

/// Whether all cells of the sheet are in the area.
bool isWholeSheet(const sheet::CellArea &area)
{
    return area.firstRow == 0 && area.firstColumn == 0;
}

} // namespace

sheet::WorkbookResult<std::unique_ptr<sheet::SheetRows>>
SheetTask::openRows(sheet::WorkbookReader &reader) const
{
    auto rows = reader.openSheet(sheet);
    if (!rows) {
        return rows;
    }
    if (needsSort) {
        rows = sheet::sortedRows(*std::move(rows), kMaxSortBytes);
    }
    if (!merged.empty()) {
        rows = sheet::filledRows(*std::move(rows), merged);
    }
    return rows;
}

TaskMaker::TaskMaker(const ReadExcelParams &params, sheet::WorkbookReader &reader)
    : m_params(params)
    , m_reader(reader)
{
}

Fault<TaskError> TaskMaker::unreadable(const Fault<sheet::WorkbookError> &fault)
{
    m_fault = fault;
    return Fault{TaskError::Unreadable};
}

// ---- Sheets.

bool TaskMaker::hasCells(size_t sheet) const
{
    const sheet::SheetKind kind = m_reader.sheets()[sheet].kind;
    return kind == sheet::SheetKind::Worksheet || kind == sheet::SheetKind::Macro;
}

/// The sheets with cells that match the pattern, without hidden ones if they are to be skipped.
std::vector<size_t> TaskMaker::sheetsOf(const QString &pattern) const
{
    // Names of sheets have no "/", which a wildcard would not match.
    const QRegularExpression expression(QRegularExpression::wildcardToRegularExpression(pattern),
                                        QRegularExpression::CaseInsensitiveOption);
    std::vector<size_t> sheets;
    for (size_t i = 0; i < m_reader.sheets().size(); ++i) {
        const sheet::SheetInfo &info = m_reader.sheets()[i];
        const bool isSkipped =
            m_params.skipHiddenSheets && info.visibility != sheet::SheetVisibility::Visible;
        if (hasCells(i) && !isSkipped && expression.match(info.name).hasMatch()) {
            sheets.push_back(i);
        }
    }
    return sheets;
}

/// The end of a message, which stays readable for workbooks with hundreds of sheets.
QString TaskMaker::listOfSheets() const
{
    constexpr size_t kMaxListed = 20;
    const size_t count = m_reader.sheets().size();
    if (count == 0) {
        return u"it has no sheets at all"_s;
    }
    QStringList names;
    for (const sheet::SheetInfo &info : m_reader.sheets()) {
        if (names.size() == static_cast<qsizetype>(kMaxListed)) {
            names << u"..."_s;
            break;
        }
        names << u"'%1'"_s.arg(info.name);
    }
    const QString list = names.join(u", "_s);
    return count == 1 ? u"its only sheet is %1"_s.arg(list)
                      : u"its %1 sheets are %2"_s.arg(QString::number(count), list);
}

TaskMaker::Sheets TaskMaker::sheetOfNumber()
{
    bool isNumber = false;
    const qlonglong number = m_params.sheetIdx.trimmed().toLongLong(&isNumber);
    const auto count = static_cast<qlonglong>(m_reader.sheets().size());
    if (!isNumber || number < 1 || number > count) {
        return Fault{TaskError::NotFound,
                     u"no sheet number '%1', %2"_s.arg(m_params.sheetIdx, listOfSheets())};
    }
    const auto index = static_cast<size_t>(number - 1);
    if (hasCells(index)) {
        return std::vector<size_t>{index};
    }
    // A workbook may begin with its charts: the first sheet is then the first one with cells.
    const std::vector<size_t> others = sheetsOf(u"*"_s);
    if (index == 0 && !others.empty()) {
        m_skippedChart = m_reader.sheets()[0].name;
        return std::vector<size_t>{others.front()};
    }
    return Fault{TaskError::NotFound, u"no cells in its sheet '%1', which is not a worksheet"_s.arg(
                                          m_reader.sheets()[index].name)};
}

/// The exact name comes before one in other letter case: other programs may write both.
TaskMaker::Sheets TaskMaker::sheetOfName()
{
    const auto &sheets = m_reader.sheets();
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        for (size_t i = 0; i < sheets.size(); ++i) {
            if (sheets[i].name.compare(m_params.sheetName, sensitivity) == 0 && hasCells(i)) {
                return std::vector<size_t>{i};
            }
        }
    }
    return Fault{TaskError::NotFound,
                 u"no sheet '%1' with cells, %2"_s.arg(m_params.sheetName, listOfSheets())};
}

TaskMaker::Sheets TaskMaker::selectedSheet()
{
    return m_params.sheetMode == SheetSelection::ByName ? sheetOfName() : sheetOfNumber();
}

Result<bool, TaskError> TaskMaker::hasData(size_t sheet)
{
    const auto rows = m_reader.openSheet(sheet);
    if (!rows) {
        return unreadable(rows.fault());
    }
    sheet::SheetRow row;
    for (;;) {
        const auto more = (*rows)->next(&row);
        if (!more) {
            return unreadable(more.fault());
        }
        if (!*more || !row.cells.empty()) {
            return *more;
        }
    }
}

/// Reads only up to the first cell of each sheet.
TaskMaker::Sheets TaskMaker::firstWithData()
{
    for (const size_t sheet : sheetsOf(u"*"_s)) {
        const auto found = hasData(sheet);
        if (!found) {
            return found.fault();
        }
        if (*found) {
            return std::vector<size_t>{sheet};
        }
    }
    return Fault{TaskError::NotFound, u"no sheet with data, %1"_s.arg(listOfSheets())};
}

TaskMaker::Sheets TaskMaker::chooseSheets()
{
    switch (m_params.sheets) {
    case SheetChoice::FirstWithData:
        return firstWithData();
    case SheetChoice::All:
        return sheetsOf(u"*"_s);
    case SheetChoice::Matching: {
        std::vector<size_t> sheets = sheetsOf(m_params.sheetName);
        if (sheets.empty()) {
            return Fault{TaskError::NotFound, u"no sheet that matches '%1', %2"_s.arg(
                                                  m_params.sheetName, listOfSheets())};
        }
        return sheets;
    }
    default: // Other numbers in a saved graph are the selected sheet.
        return selectedSheet();
    }
}

// ---- Ranges.

/// Set the task to the cells of a table. Returns false if there is none.
Result<bool, TaskError> TaskMaker::findTable(const QString &name, SheetTask *task)
{
    const auto tables = m_reader.tables();
    if (!tables) {
        return unreadable(tables.fault());
    }
    for (const sheet::TableInfo &table : *tables) {
        if (table.name.compare(name, Qt::CaseInsensitive) == 0) {
            task->sheet = static_cast<size_t>(table.sheet);
            task->options.walk.area = table.area;
            task->options.walk.area.lastRow -= table.totalsRows;
            task->options.hasHeader = table.hasHeader && m_params.firstLineContainsColumnNames;
            if (table.hasHeader && !m_params.firstLineContainsColumnNames) {
                ++task->options.walk.area.firstRow;
            }
            return true;
        }
    }
    return false;
}

/// Set the task to the cells of a defined name; one of the task's sheet comes first.
bool TaskMaker::findName(const QString &name, SheetTask *task) const
{
    const sheet::DefinedName *found = nullptr;
    for (const sheet::DefinedName &one : m_reader.definedNames()) {
        const bool isLocal = one.scope == static_cast<int>(task->sheet);
        if (one.area && one.name.compare(name, Qt::CaseInsensitive) == 0 &&
            (found == nullptr || isLocal)) {
            found = &one;
        }
    }
    if (found != nullptr) {
        task->sheet = static_cast<size_t>(found->sheet);
        task->options.walk.area = *found->area;
    }
    return found != nullptr;
}

/// Set the task to an area, and to its sheet if it names one.
Result<bool, TaskError> TaskMaker::setArea(const sheet::SheetArea &area, SheetTask *task) const
{
    task->options.walk.area = area.area;
    if (area.sheet.isEmpty()) {
        return true;
    }
    for (size_t i = 0; i < m_reader.sheets().size(); ++i) {
        if (m_reader.sheets()[i].name.compare(area.sheet, Qt::CaseInsensitive) == 0 &&
            hasCells(i)) {
            task->sheet = i;
            return true;
        }
    }
    return Fault{TaskError::NotFound,
                 u"no sheet '%1' with cells, %2"_s.arg(area.sheet, listOfSheets())};
}

/// Set the cells that the parameter selects.
Result<bool, TaskError> TaskMaker::applyRange(SheetTask *task)
{
    const QString range = m_params.range.trimmed();
    const auto area = sheet::parseSheetArea(range);
    if (range.isEmpty() || (area && range.contains(u':'))) {
        return range.isEmpty() ? Result<bool, TaskError>(true) : setArea(*area, task);
    }
    // Some programs write tables with names that look like cells: T1.
    auto table = findTable(range, task);
    if (!table || *table || findName(range, task)) {
        return table;
    }
    if (area) {
        return setArea(*area, task);
    }
    const bool isName = std::ranges::any_of(m_reader.definedNames(), [&](const auto &one) {
        return one.name.compare(range, Qt::CaseInsensitive) == 0;
    });
    return Fault{
        TaskError::NotFound,
        isName
            ? u"a defined name '%1' that is not one range of cells"_s.arg(range)
            : u"no table or defined name '%1'; a range of cells is written as B2:D9"_s.arg(range)};
}

// ---- Tasks.

sheet::WorkbookResult<void> TaskMaker::scan(SheetTask *task)
{
    if (m_params.fillMerged || m_params.skipHiddenColumns) {
        auto layout = m_reader.layout(task->sheet);
        if (!layout) {
            return layout.fault();
        }
        if (m_params.fillMerged) {
            task->merged = std::move(layout->merged);
        }
        if (m_params.skipHiddenColumns) {
            task->hiddenColumns = std::move(layout->hiddenColumns);
        }
    }
    for (;;) {
        auto rows = task->openRows(m_reader);
        if (!rows) {
            return rows.fault();
        }
        auto scanned = scanSheet(*std::move(rows), task->options);
        if (!scanned) {
            return scanned.fault();
        }
        task->scan = std::move(*scanned);
        // A row that comes too late is only in the right place after sorting.
        const auto order = static_cast<size_t>(sheet::SheetProblem::RowOrder);
        if (task->needsSort || !task->scan.problems[order].any()) {
            return {};
        }
        task->needsSort = true;
    }
}

Result<SheetTask, TaskError> TaskMaker::makeTask(size_t sheet)
{
    SheetTask task;
    task.sheet = sheet;
    task.options.walk.emptyRows = m_params.emptyRows;
    task.options.walk.skipHiddenRows = m_params.skipHiddenRows;
    task.options.rules = {m_params.dates != DateCells::Serials,
                          m_params.errorCells != ErrorCells::Missing, m_reader.uses1904()};
    task.options.hasHeader = m_params.firstLineContainsColumnNames;
    task.options.sampleRows = m_params.scanRows;
    task.options.sampleOnly = m_params.sampleOnly;
    if (const auto applied = applyRange(&task); !applied) {
        return applied.fault();
    }
    task.name = m_reader.sheets()[task.sheet].name;
    task.options.headerIsFirstRow = !isWholeSheet(task.options.walk.area);
    task.options.walk.area.firstRow += m_params.skipRows;
    if (const auto scanned = scan(&task); !scanned) {
        return unreadable(scanned.fault());
    }
    return task;
}

Result<std::vector<SheetTask>, TaskError> TaskMaker::make()
{
    const Sheets sheets = chooseSheets();
    if (!sheets) {
        return sheets.fault();
    }
    std::vector<SheetTask> tasks;
    size_t columns = 0;
    for (const size_t sheet : *sheets) {
        auto task = makeTask(sheet);
        if (!task) {
            return task.fault();
        }
        columns += task->scan.columns.size();
        if (columns > kMaxTaskColumns) {
            return unreadable({sheet::WorkbookError::TooLarge,
                               u"its sheets have more than %1 columns"_s.arg(kMaxTaskColumns)});
        }
        tasks.push_back(*std::move(task));
    }
    return tasks;
}

} // namespace corvanta
