// Delivers rows sheet by sheet. A call of next() takes one step of the walk, so that a run can be
// stopped between any two rows; a gap of empty rows is one step and is delivered row by row.
#include "actions/workbook/workbook_file.h"

#include "base/counted.h"
#include "codecs/sheet/cell_area.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Most units of text in all cells: some, and more for a large file, which may repeat many texts.
constexpr qint64 kMaxUnits = qint64(256) << 20;
constexpr qint64 kMaxUnitsPerByte = 512;

/// What a reader repaired, and how.
struct ProblemText
{
    const char16_t *noun;
    const char16_t *what;
    const char16_t *effect;
};

} // namespace

WorkbookFile::WorkbookFile(ActionBase &action, QString name, OpenWorkbook workbook,
                           std::vector<SheetDelivery> sheets, std::vector<cell::Type> types,
                           int sheetNameColumn)
    : m_action(action)
    , m_name(std::move(name))
    , m_workbook(std::move(workbook))
    , m_sheets(std::move(sheets))
    , m_types(std::move(types))
    , m_sheetNameColumn(sheetNameColumn)
    , m_maxTextUnits(kMaxUnits + m_workbook.source->size() * kMaxUnitsPerByte)
{
}

WorkbookFile::~WorkbookFile() = default;

float WorkbookFile::fractionDone() const
{
    return m_fraction.load(std::memory_order_relaxed);
}

/// Report why the sheet cannot be read. The rows before were right. Returns false.
bool WorkbookFile::fail(const Fault<sheet::WorkbookError> &fault)
{
    return m_action.runIsGood() && failWorkbook(m_action, *m_workbook.format, m_name, fault.code,
                                                describe(fault, *m_workbook.source));
}

/// Begin the walk over the next sheet. The cell with its name is made once for all rows.
bool WorkbookFile::openSheet()
{
    auto rows = sheet().task.openRows(*m_workbook.reader);
    if (!rows) {
        return fail(rows.fault());
    }
    m_walker = std::make_unique<SheetWalker>(*std::move(rows), sheet().task.options.walk);
    m_sheetNameBuffer.reset();
    m_sheetNameCell = bytesFromQString(&m_sheetNameBuffer, sheet().task.name);
    return true;
}

/// Warn about what was repaired, and go to the next sheet.
bool WorkbookFile::closeSheet()
{
    warnProblems(m_walker->rows().problems());
    // The scan has seen all rows, unless it ended after its sample.
    const bool isInOrder = m_walker->lateRows() == 0;
    const QString name = sheet().task.name;
    m_walker.reset();
    ++m_sheet;
    return isInOrder ||
           m_action.fail(u"Error: The rows of the sheet '%2' of the workbook '%1' are "
                         "not in order; use sampleOnly='0' to sort them\n"_s.arg(m_name, name));
}

/// Make the cells that the last row had missing: fewer than all cells of a sparse row.
void WorkbookFile::clearCells(OneRow &row)
{
    for (const int column : m_filled) {
        row.setCol(column, nullptr);
    }
    m_filled.clear();
}

/// Begin a row: without cells, except for the name of the sheet.
void WorkbookFile::clearRow(OneRow &row)
{
    clearCells(row);
    if (m_sheetNameColumn >= 0) {
        row.setCol(m_sheetNameColumn, m_sheetNameCell);
    }
}

/// A cell after the sample is of another type. Returns false, as it fails the run.
bool WorkbookFile::doesNotFit(const WalkStep &step, const sheet::SheetCell &cell)
{
    return m_action.fail(
        u"Error: The cell %3 of the sheet '%2' of the workbook '%1' does not have the type that "
        "the first %4 give its column; use sampleOnly='0' or allText='1'\n"_s.arg(
            m_name, sheet().task.name, sheet::cellName(cell.column, step.row),
            counted(sheet().task.options.sampleRows, u"row"_s)));
}

/// Put the cells of a row into their columns. Without a type check after a complete scan.
bool WorkbookFile::putRow(const WalkStep &step, OneRow &row)
{
    clearRow(row);
    const SheetTask &task = sheet().task;
    const std::vector<int> &targets = sheet().targets;
    RowBuffer *const buffer = m_action.bufferForOutputPin(0);
    for (const sheet::SheetCell &cell : step.cells) {
        const auto index = static_cast<size_t>(cell.column - task.options.walk.area.firstColumn);
        const int column = index < targets.size() ? targets[index] : -1;
        if (column < 0) {
            if (index >= targets.size()) {
                return doesNotFit(step, cell);
            }
            continue;
        }
        const cell::Type type = m_types[static_cast<size_t>(column)];
        if (!task.scan.isComplete && type != cell::Type::Text &&
            (task.options.rules.contentOf(cell) & kAllTexts) != 0) {
            return doesNotFit(step, cell);
        }
        row.setCol(column, task.options.rules.cellFor(cell, type, buffer));
        m_filled.push_back(column);
        const bool isNumber =
            cell.kind == sheet::CellKind::Number || cell.kind == sheet::CellKind::Boolean;
        m_textUnits += isNumber ? 0 : static_cast<qint64>(cell.text.size());
    }
    return checkTexts();
}

/// A small file can refer to a long text millions of times.
bool WorkbookFile::checkTexts()
{
    return m_textUnits <= m_maxTextUnits ||
           fail(Fault{
               sheet::WorkbookError::TooLarge,
               u"it repeats its texts so often that its cells have more than %1 characters"_s.arg(
                   m_maxTextUnits)});
}

/// Counts all sheets as equally long: counting their rows would need another pass.
void WorkbookFile::updateFraction()
{
    constexpr qint64 kRowsPerFraction = 1024;
    if (++m_rows % kRowsPerFraction == 0) {
        const double sheets = static_cast<double>(m_sheet) + m_walker->rows().fractionDone();
        m_fraction.store(static_cast<float>(sheets / static_cast<double>(m_sheets.size())),
                         std::memory_order_relaxed);
    }
}

/// Take a step of the walk; only a row of data is immediately a row of the table.
bool WorkbookFile::take(const WalkStep &step, OneRow &row, Found *found)
{
    const qint64 firstRow = sheet().task.scan.firstRow;
    switch (step.kind) {
    case WalkStep::Kind::End:
        return closeSheet();
    case WalkStep::Kind::Empty:
        // Those before the header are not rows of the table.
        m_emptyRows = std::max<qint64>(0, step.row + step.count - std::max(step.row, firstRow));
        return true;
    case WalkStep::Kind::Row:
        break;
    }
    if (step.row < firstRow) {
        return true;
    }
    *found = Found::Row;
    return putRow(step, row);
}

bool WorkbookFile::next(OneRow &row, Found *found)
{
    if (m_emptyRows > 0) {
        --m_emptyRows;
        clearRow(row);
        *found = Found::Row;
        return true;
    }
    *found = m_walker || m_sheet < m_sheets.size() ? Found::Nothing : Found::End;
    if (*found == Found::End) {
        return true;
    }
    if (!m_walker && !openSheet()) {
        return false;
    }
    const auto step = m_walker->next();
    if (!step) {
        return fail(step.fault());
    }
    updateFraction();
    return take(*step, row, found);
}

/// A sheet that is not read to its end has had problems too.
void WorkbookFile::beforeClose()
{
    if (m_walker) {
        warnProblems(m_walker->rows().problems());
    }
}

/// One warning per kind of problem.
void WorkbookFile::warnProblems(const sheet::SheetProblems &problems)
{
    static constexpr std::array<ProblemText, sheet::kSheetProblems> kTexts{{
        {u"cell", u"without a valid reference", u"put after the previous cell"},
        {u"cell", u"with an invalid number", u"read as text"},
        {u"cell", u"with the number of a missing text", u"left out"},
        {u"cell", u"with several values", u"the last value counts"},
        {u"row", u"in the wrong order", u"sorted by row number"},
        {u"cell", u"beyond the last column or row of a sheet", u"left out"},
        {u"text", u"with invalid bytes", u"replaced by U+FFFD"},
        {u"formula", u"without a stored result", u"read as missing"},
    }};
    for (size_t i = 0; i < problems.size(); ++i) {
        if (problems[i].any()) {
            m_action.warn(
                u"Warning: The sheet '%2' of the workbook '%1' has %3 %4 (%5); the first is %6\n"_s
                    .arg(m_name, sheet().task.name,
                         counted(problems[i].count(), QString::fromUtf16(kTexts[i].noun)),
                         QString::fromUtf16(kTexts[i].what), QString::fromUtf16(kTexts[i].effect),
                         problems[i].first()));
        }
    }
}

} // namespace corvanta
