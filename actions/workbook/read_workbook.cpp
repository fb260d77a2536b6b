// The run in order: list the files, scan their sheets for columns, decide the types, and deliver
// the rows file by file. A single file stays open between scan and delivery.
#include "actions/workbook/read_workbook.h"

#include "actions/shared/tables/reader_file.h"
#include "actions/workbook/workbook_file.h"
#include "base/counted.h"
#include "codecs/sheet/cell_area.h"
#include "corvanta/failure_reason.h"
#include "io/input/kept_pipe.h"

#include <QCoreApplication>
#include <QScopeGuard>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Cells that all rows together may have when nearly all of them are missing: beyond it, nothing
/// but empty cells would be delivered for hours.
constexpr qint64 kMaxSparseCells = qint64(1) << 30;
constexpr qint64 kSparseRatio = 1000;

constexpr auto kUnusedName =
    QT_TRANSLATE_NOOP("Problems", "'%1' is not used: sheetMode='1' reads the sheet of this name");

/// What is special about a sheet, for lists.
QString notesOf(const sheet::SheetInfo &info)
{
    QStringList notes;
    switch (info.kind) {
    case sheet::SheetKind::Worksheet:
        break;
    case sheet::SheetKind::Chart:
        notes << u"chart"_s;
        break;
    case sheet::SheetKind::Macro:
        notes << u"macros"_s;
        break;
    case sheet::SheetKind::Dialog:
        notes << u"dialog"_s;
        break;
    }
    if (info.visibility != sheet::SheetVisibility::Visible) {
        notes << u"hidden"_s;
    }
    return notes.join(u", "_s);
}

/// Whether the parameter sheetName has an effect: as a name, or as a pattern.
bool usesSheetName(const ReadExcelParams &params)
{
    return params.sheets == SheetChoice::Matching ||
           (params.sheets == SheetChoice::Selected && params.sheetMode == SheetSelection::ByName);
}

/// Whether more than one sheet of a workbook can be read.
bool readsSeveralSheets(const ReadExcelParams &params)
{
    return params.sheets == SheetChoice::All || params.sheets == SheetChoice::Matching;
}

/// Whether the range is one of the selected sheet; tables and names have sheets of their own.
bool staysOnSheet(const QString &range)
{
    const auto area = sheet::parseSheetArea(range);
    return range.trimmed().isEmpty() || (area && area->sheet.isEmpty());
}

} // namespace

void ReadWorkbook::start()
{
    m_series.reset();
    m_files.clear();
    m_planned.clear();
    m_columns = {};
    m_sheetNameColumn = -1;
    m_mixedNotes.reset();
    m_run = expandedParams();
}

/// Expanded once per run, so that all files are read with the same values.
ReadExcelParams ReadWorkbook::expandedParams() const
{
    ReadExcelParams params = readerParams();
    params.sheetIdx = expandString(params.sheetIdx);
    params.sheetName = expandString(params.sheetName);
    params.range = expandString(params.range);
    return params;
}

/// The message about a sheet name that nothing uses; empty: it is used, or there is none.
QString ReadWorkbook::unusedName() const
{
    const QString &name = readerParams().sheetName;
    return name.isEmpty() || usesSheetName(readerParams())
               ? QString()
               : QString::fromLatin1(kUnusedName).arg(name);
}

/// In the language of the user, while the same warning of a run is in English.
QVector<ParameterProblem> ReadWorkbook::problems() const
{
    if (unusedName().isEmpty()) {
        return {};
    }
    return {{QString::fromLatin1(shared::kSheetName),
             QCoreApplication::translate("Problems", kUnusedName).arg(readerParams().sheetName),
             ParameterProblem::Severity::Warning}};
}

void ReadWorkbook::finish()
{
    m_series.finish();
    m_planned.clear();
}

/// The series stops the file of the run; a workbook that is scanned before it is stopped here.
void ReadWorkbook::wakeAll()
{
    m_series.stop();
    const std::lock_guard lock(m_mutex);
    if (m_scanned != nullptr) {
        m_scanned->stop();
    }
}

/// Where wakeAll() finds the workbook that is scanned.
void ReadWorkbook::setScanned(sheet::WorkbookReader *reader)
{
    const std::lock_guard lock(m_mutex);
    m_scanned = reader;
    if (reader != nullptr && !control().isRunning()) {
        reader->stop();
    }
}

// ---- Before the first row.

/// The types are decided before the first row, so that all files have the same columns.
bool ReadWorkbook::prepare()
{
    if (const QString unused = unusedName(); !unused.isEmpty()) {
        warn(u"Warning: The sheet name %1\n"_s.arg(unused));
    }
    QStringList files;
    if (!listFiles(&files) || !planFiles(files)) {
        return false;
    }
    m_columns.decideTypes(m_run.allText);
    warnLateTexts();
    startSeries();
    return m_series.openNext();
}

/// Names from a pin may be patterns, too.
bool ReadWorkbook::listFiles(QStringList *files)
{
    if (!m_run.fileNameFromPin) {
        *files = namesOfPattern(*this, m_run.fileName);
        return true;
    }
    // Only a pin without rows is an error: a pattern may find no file.
    bool hasName = false;
    while (const OneRow *const row = getNextRowFromInPin(0)) {
        hasName = true;
        *files += namesOfPattern(*this, row->text(0));
    }
    return runIsGood() &&
           (hasName || fail(u"ERROR: Cannot read the name of the workbook on input pin??\n"_s));
}

/// All files are scanned before the first row, because they decide together what columns are.
bool ReadWorkbook::planFiles(const QStringList &files)
{
    for (const QString &name : files) {
        if (!runIsGood() || !planFile(name, files.size() == 1)) {
            return false;
        }
    }
    return runIsGood();
}

/// Only a missing file is tried again: a damaged one stays damaged.
std::optional<OpenWorkbook> ReadWorkbook::openWithRetries(const QString &name)
{
    auto opened = openWorkbook(*this, workbookFormat(), name, InputFile::Report::Failure);
    const auto isMissing = [&] { return !opened && !opened.fault().code; };
    if (isMissing()) {
        retryOpening(name, opened.fault().detail, m_run.timeOut, control(), [&] {
            opened = openWorkbook(*this, workbookFormat(), name, InputFile::Report::Nothing);
            return !isMissing();
        });
    }
    if (!opened) {
        reportOpenFault(name, opened.fault());
        return std::nullopt;
    }
    return *std::move(opened);
}

/// Report a file that cannot be opened. Returns true to continue with the next file.
bool ReadWorkbook::reportOpenFault(const QString &name, const Fault<WorkbookOpenError> &fault)
{
    if (!runIsGood()) {
        return false;
    }
    if (fault.code) {
        return failWorkbook(*this, workbookFormat(), name, *fault.code, fault.detail);
    }
    const bool continues = reportMissing(name);
    logReason(fault.detail);
    return continues;
}

/// A single workbook stays open: it would be opened again for its rows.
bool ReadWorkbook::planFile(const QString &name, bool keepsOpen)
{
    auto workbook = openWithRetries(name);
    if (!workbook) {
        return runIsGood();
    }
    const auto file = std::make_shared<PlannedFile>();
    if (!makeTasks(name, *workbook, file.get())) {
        return false;
    }
    for (const SheetTask &task : file->tasks) {
        file->columns.push_back(columnsOf(task));
    }
    if (keepsOpen) {
        file->workbook = std::move(workbook);
    }
    m_files << name;
    m_planned.emplace(name, file);
    return addColumns(name, *file);
}

/// Choose the sheets of a workbook and scan them.
bool ReadWorkbook::makeTasks(const QString &name, const OpenWorkbook &workbook, PlannedFile *file)
{
    TaskMaker maker(m_run, *workbook.reader);
    auto tasks = [&] {
        setScanned(workbook.reader.get());
        const auto isScanned = qScopeGuard([this] { setScanned(nullptr); });
        return maker.make();
    }();
    if (!runIsGood()) {
        return false;
    }
    if (!tasks) {
        return reportTaskFault(name, tasks.fault(), maker.fault(), *workbook.source);
    }
    if (!maker.skippedChart().isEmpty()) {
        warn(u"Warning: The first sheet '%2' of the workbook '%1' is a chart; the first sheet with "
             "cells is read\n"_s.arg(name, maker.skippedChart()));
    }
    file->tasks = *std::move(tasks);
    return true;
}

/// `why` says why a workbook is unreadable. Returns false.
bool ReadWorkbook::reportTaskFault(const QString &name, const Fault<TaskError> &fault,
                                   const Fault<sheet::WorkbookError> &why, const ByteSource &source)
{
    return fault.code == TaskError::NotFound
               ? fail(u"Error: The workbook '%1' has %2\n"_s.arg(name, fault.detail))
               : failWorkbook(*this, workbookFormat(), name, why.code, describe(why, source));
}

/// The sheets of all files are one table, so their columns must match.
bool ReadWorkbook::addColumns(const QString &name, const PlannedFile &file)
{
    for (size_t i = 0; i < file.tasks.size(); ++i) {
        const SheetTask &task = file.tasks[i];
        const auto mismatch = m_columns.add(task, file.columns[i], !m_run.unionByName);
        if (mismatch && mismatch->kind == SheetMismatch::Kind::Count) {
            return fail(u"Error: The sheet '%2' of the workbook '%1' has %3 instead of "
                        "%4; use unionByName='1' to join columns by name\n"_s.arg(
                            name, task.name, mismatch->found, mismatch->first));
        }
        if (mismatch) {
            return fail(
                u"Error: Column %3 of the sheet '%2' of the workbook '%1' is '%4' instead of '%5'; "
                "use unionByName='1' to join columns by name\n"_s.arg(
                    name, task.name, QString::number(mismatch->column + 1), mismatch->found,
                    mismatch->first));
        }
        warnColumns(name, task, file.columns[i]);
        noteMixed(task, file.columns[i]);
        if (!checkSize(name, task, file.columns[i])) {
            return false;
        }
    }
    return true;
}

/// Refuse sheets that are nearly empty and enormous.
bool ReadWorkbook::checkSize(const QString &name, const SheetTask &task, const TaskColumns &columns)
{
    const qint64 rows = task.scan.lastRow - task.scan.firstRow + 1;
    const qint64 cells = rows * columns.names.size();
    if (cells < kMaxSparseCells || task.scan.cells > cells / kSparseRatio) {
        return true;
    }
    return fail(u"Error: The sheet '%2' of the workbook '%1' has only %3 in %4 and %5; "
                "select a part of it with range, or use emptyRows='1'\n"_s.arg(
                    name, task.name, counted(task.scan.cells, u"cell"_s), counted(rows, u"row"_s),
                    counted(columns.names.size(), u"column"_s)));
}

void ReadWorkbook::warnColumns(const QString &name, const SheetTask &task,
                               const TaskColumns &columns)
{
    if (columns.leftOut > 0) {
        warn(u"Warning: The sheet '%2' of the workbook '%1' is read without %3; the first is "
             "%4\n"_s.arg(name, task.name, counted(columns.leftOut, u"empty column"_s),
                          columns.firstLeftOut));
    }
    if (task.scan.errors.any()) {
        warn(u"Warning: %3 of the sheet '%2' of the workbook '%1' %4 read as missing; the first is "
             "%5\n"_s.arg(name, task.name, counted(task.scan.errors.count(), u"error cell"_s),
                          task.scan.errors.count() == 1 ? u"is"_s : u"are"_s,
                          task.scan.errors.first()));
    }
    if (task.scan.cells == 0 && task.scan.headerRow < 0 && !readsSeveralSheets(m_run)) {
        MainUI::addLog(MainUI::Info, u"The sheet '%2' of the workbook '%1' has no cells in the "
                                     "rows and columns that are read\n"_s.arg(name, task.name));
    }
    if (!task.scan.isComplete) {
        MainUI::addLog(MainUI::Info,
                       u"The types of the columns of the sheet '%1' are those of its first "
                       "%2\n"_s.arg(task.name, counted(task.options.sampleRows, u"row"_s)));
    }
}

/// Say which columns of the sheet are texts because of a few of their values.
void ReadWorkbook::noteMixed(const SheetTask &task, const TaskColumns &columns)
{
    for (const MixedColumn &mixed : task.scan.mixed) {
        const auto at = std::ranges::lower_bound(columns.scanned, mixed.column);
        if (m_run.allText || at == columns.scanned.end() || *at != mixed.column) {
            continue;
        }
        m_mixedNotes.add(u"The column '%1' of the sheet '%2' is text because of '%3' in %4; %5 of "
                         "its %6 values are %7\n"_s.arg(columns.names[at - columns.scanned.begin()],
                                                        task.name, mixed.other, mixed.place,
                                                        QString::number(mixed.count),
                                                        QString::number(mixed.values), mixed.kind));
    }
}

/// Report the columns that are texts because of a cell after the sample.
void ReadWorkbook::warnLateTexts()
{
    const std::vector<LateText> &late = m_columns.lateTexts();
    if (!late.empty() && !m_run.allText) {
        const bool isOne = late.size() == 1;
        warn(u"Warning: %1 only numbers in the first %2 and other values later; %3 read as "
             "text; the first is '%4', in %5\n"_s.arg(
                 counted(std::ssize(late), u"column"_s) + u' ' + hasOrHave(std::ssize(late)),
                 counted(m_run.scanRows, u"row"_s), isOne ? u"it is"_s : u"they are"_s,
                 late.front().column, late.front().place));
    }
}

void ReadWorkbook::startSeries()
{
    FileSeries::Options options;
    TableSchema columns = m_columns.schema();
    if (m_run.outputSheetNames || readsSeveralSheets(m_run)) {
        m_sheetNameColumn = static_cast<int>(columns.names.size());
        // A table that was made from several sheets has such a column.
        QString column = u"_SheetName"_s;
        for (int i = 2; columns.names.contains(column); ++i) {
            column = u"_SheetName_%1"_s.arg(i);
        }
        columns.names << column;
        columns.types << MetaInfo(cell::Type::Text);
    }
    options.columns = columns;
    if (m_run.outputFilenames) {
        options.fileNameColumn = u"_FileNames"_s;
    }
    m_series.start(*this, m_files, options);
}

// ---- Files and messages.

FileSeries::Opened ReadWorkbook::openFile(const QString &name)
{
    const auto planned = m_planned.at(name);
    std::optional<OpenWorkbook> workbook = std::exchange(planned->workbook, std::nullopt);
    if (!workbook) {
        auto opened = openWorkbook(*this, workbookFormat(), name, InputFile::Report::Failure);
        if (!opened) {
            reportOpenFault(name, opened.fault());
            return Fault{FileSeries::OpenError::Failed};
        }
        workbook = *std::move(opened);
    }
    std::vector<cell::Type> types;
    for (const TableColumns::Column &column : m_columns.columns()) {
        types.push_back(column.type);
    }
    std::vector<SheetDelivery> sheets;
    for (size_t i = 0; i < planned->tasks.size(); ++i) {
        std::vector<int> targets =
            m_columns.targetsOf(planned->tasks[i], planned->columns[i], !m_run.unionByName);
        sheets.push_back({std::move(planned->tasks[i]), std::move(targets)});
    }
    return FileSeries::Opened(std::make_unique<WorkbookFile>(
        *this, name, *std::move(workbook), std::move(sheets), std::move(types), m_sheetNameColumn));
}

bool ReadWorkbook::reportMissing(const QString &name)
{
    const QString text = m_run.abortIfMissing ? u"Error: cannot open the workbook '%1'\n"_s
                                              : u"Warning: cannot open the workbook '%1'\n"_s;
    return failOrWarn(*this, m_run.abortIfMissing, text.arg(name));
}

bool ReadWorkbook::reportUnreadable(const QString &name)
{
    return reportMissing(name);
}

// ---- The sheets as tables, for convert, head and schema.

/// The sheet is chosen by its number, which is valid for any name.
bool ReadWorkbook::fill(int sheet)
{
    if (sheet >= 0) {
        readerParams().sheetMode = SheetSelection::ByNumber;
        readerParams().sheetIdx = QString::number(sheet + 1);
    }
    return true;
}

/// The first file, for looking at it outside a run; null if there is none. A pipe could not be read
/// again by the run.
std::unique_ptr<InputFile> ReadWorkbook::openFirst() const
{
    const ReadExcelParams &params = readerParams();
    const QStringList files =
        params.fileNameFromPin ? QStringList() : namesOfPattern(*this, params.fileName);
    // A pipe can be read only once: opening it here would take the bytes that the run reads.
    if (files.isEmpty() || input::isPipe(files.first())) {
        return nullptr;
    }
    auto file = std::make_unique<InputFile>(globalParameters(), files.first(), false,
                                            InputFile::Report::Nothing);
    return file->isOpen() && file->size() >= 0 ? std::move(file) : nullptr;
}

namespace {

/// The kind of a column with these bits of ColumnContent.
ValueKind kindOf(quint16 content)
{
    const bool hasOnlyNumbers = content != 0 && (content & kAllTexts) == 0;
    if (hasOnlyNumbers) {
        return (content & kHasNumbers) != 0 ? ValueKind::Decimal : ValueKind::Integer;
    }
    switch (content) {
    case kHasDates:
        return ValueKind::Date;
    case kHasDateTimes:
    case kHasDates | kHasDateTimes:
        return ValueKind::DateTime;
    case kHasTimes:
        return ValueKind::Time;
    case kHasBooleans:
        return ValueKind::Boolean;
    default:
        return ValueKind::Text;
    }
}

} // namespace

/// Nothing is reported: the run reads the same file again.
std::optional<QVector<ColumnKind>> ReadWorkbook::columnKinds(KindExtent /*extent*/)
{
    QVector<ColumnKind> kinds;
    const ReadExcelParams params = expandedParams();
    if (params.allText) {
        return kinds;
    }
    const auto file = openFirst();
    if (!file) {
        return std::nullopt;
    }
    const auto reader = workbookFormat().makeReader(*file);
    if (!reader) {
        return std::nullopt;
    }
    const auto tasks = TaskMaker(params, **reader).make();
    TableColumns columns;
    for (const SheetTask &task : tasks ? *tasks : std::vector<SheetTask>()) {
        columns.add(task, columnsOf(task), !params.unionByName);
    }
    columns.decideTypes(params.allText);
    for (const TableColumns::Column &column : columns.columns()) {
        kinds << ColumnKind{column.name, kindOf(column.content), static_cast<char>(column.type)};
    }
    return kinds;
}

/// The sheets of the first file. Outside runs: nothing here fails one.
QVector<InputTable> ReadWorkbook::listTables()
{
    QVector<InputTable> sheets;
    const ReadExcelParams params = expandedParams();
    const auto file = openFirst();
    if (!file) {
        return sheets;
    }
    const auto reader = workbookFormat().makeReader(*file);
    if (!reader) {
        return sheets;
    }
    for (const sheet::SheetInfo &info : (*reader)->sheets()) {
        InputTable table;
        table.path = info.name;
        table.rows = InputTable::kRowsNotKnown;
        table.beginning = notesOf(info);
        sheets << table;
    }
    const auto chosen = TaskMaker(params, **reader).chooseSheets();
    if (chosen && !readsSeveralSheets(params) && staysOnSheet(params.range)) {
        sheets[static_cast<qsizetype>(chosen->front())].isChosen = true;
    }
    return sheets;
}

} // namespace corvanta
