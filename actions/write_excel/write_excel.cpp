#include "actions/write_excel/write_excel.h"

#include "actions/write_excel/write_excel_look.h"
#include "corvanta/failure_reason.h"

#include <QLocale>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionWriteExcel::ActionWriteExcel(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteExcelEntry, saved, parameters)
{
}

QString ActionWriteExcel::message(WriteProblem problem, const QString &name) const
{
    switch (problem) {
    case WriteProblem::NoTestColumn:
        return u"\nERROR writing to Excel file '%1': cannot find column '%2' to test\n"_s.arg(
            fileName(), name);
    case WriteProblem::NoColumn:
        return u"\nERROR writing to Excel file '%1': cannot find column '%2' to write\n"_s.arg(
            fileName(), name);
    case WriteProblem::NoColumns:
        return u"\nERROR writing to Excel file '%1': no column to write?\n"_s.arg(fileName());
    case WriteProblem::BadFloatFormat:
        return u"\nERROR writing to Excel file '%1': '%2' is not a format of a floating-point number\n"_s
            .arg(fileName(), name);
    case WriteProblem::CannotOpen:
        return u"\nERROR writing to Excel file '%1'\n"_s.arg(fileName());
    case WriteProblem::TooLarge:
        return u"\nERROR writing to XLSX file '%1': output buffer too small\n"_s.arg(fileName());
    case WriteProblem::CannotWrite:
        break;
    }
    return u"\nERROR: cannot write to XLSX file '%1'\n"_s.arg(fileName());
}

void ActionWriteExcel::setColumnKinds(const QVector<ColumnKind> &columns)
{
    m_params.toDate = columnsOfKind(columns, ValueKind::Date);
    // A display that the user has chosen is for all dates.
    const bool hasDisplay = m_params.dateFormatExcel != DateDisplay::Date;
    (hasDisplay ? m_params.toDate : m_params.toDateTime) +=
        columnsOfKind(columns, ValueKind::DateTime);
    m_params.toTime = columnsOfKind(columns, ValueKind::Time);
    m_params.toBoolean = columnsOfKind(columns, ValueKind::Boolean);
    // Years before 1900 exist in other files.
    m_params.keepOddDates = true;
}

void ActionWriteExcel::start()
{
    RowWriter::start();
    m_run = std::make_unique<RunState>();
    if (!setFloatFormat() || !setCompression() || !checkLook()) {
        return;
    }
    openCopySource();
    // Names of months and days are those of the format's owner.
    const QLocale locale =
        m_params.dateFormatType == DateInput::Own ? QLocale::c() : QLocale::system();
    m_run->dates = std::make_unique<sheet::DateParser>(
        readsIsoDates() ? sheet::DateParser::iso(m_params.excelHack)
                        : sheet::DateParser(qtDateFormat(), locale, m_params.excelHack));
}

bool ActionWriteExcel::setFloatFormat()
{
    // Spreadsheet programs report a cell of numbers with any other text as damage.
    const QString &format = m_params.floatToString;
    return (m_floatFormat.set(format) && sheet::printsNumbers(m_floatFormat)) ||
           failWith(WriteProblem::BadFloatFormat, format);
}

/// All problems are reported, so that the user corrects them in one go.
bool ActionWriteExcel::checkLook()
{
    for (const LookProblem &problem : corvanta::lookProblems(m_params)) {
        fail(u"\nERROR writing to Excel file '%1': %2: %3\n"_s.arg(
            fileName(), QString::fromLatin1(problem.parameter),
            QString::fromUtf8(problem.text).arg(problem.value)));
    }
    return runIsGood();
}

bool ActionWriteExcel::setCompression()
{
    const QString compression =
        globalParameters() != nullptr ? globalParameters()->compression() : QString();
    // An option of the run, not of the graph: it changes the bytes but not the content.
    if (compression.isEmpty()) {
        return true;
    }
    const std::optional<deflate::Level> level = deflate::parseLevel(compression);
    if (!level) {
        return fail(
            u"\nERROR writing to Excel file '%1': '%2' is not a level of compression (isal-2, isal-3, zlib-1 to zlib-9)\n"_s
                .arg(fileName(), compression));
    }
    m_run->compression.level = *level;
    return true;
}

QString ActionWriteExcel::qtDateFormat() const
{
    // Asked once per run: a change of the user's settings takes effect with the next one.
    const QLocale system = QLocale::system();
    switch (m_params.dateFormatType) {
    case DateInput::Own:
        return expandString(m_params.dateFormat);
    case DateInput::SystemShortDate:
        return system.dateFormat(QLocale::ShortFormat);
    case DateInput::SystemLongDate:
        return system.dateFormat(QLocale::LongFormat);
    case DateInput::SystemShortTime:
        return system.timeFormat(QLocale::ShortFormat);
    case DateInput::SystemLongTime:
        return system.timeFormat(QLocale::LongFormat);
    case DateInput::SystemShortDateTime:
        return system.dateTimeFormat(QLocale::ShortFormat);
    case DateInput::SystemLongDateTime:
        return system.dateTimeFormat(QLocale::LongFormat);
    default:
        return {};
    }
}

QString ActionWriteExcel::dateFormatName() const
{
    return readsIsoDates() ? u"ISO 8601"_s : qtDateFormat();
}

bool ActionWriteExcel::decideKind(const OneRow &row, sheet::Column *column)
{
    const MetaInfo::MetaTypeColumn type = row.getMetaType(column->input).type();
    // The lists come first: a column of numbers can be a date too.
    if (m_params.toDate.contains(column->name)) {
        column->kind = sheet::Column::Kind::Date;
    } else if (isText(row, *column, m_params.toDateTime)) {
        column->kind = sheet::Column::Kind::DateTime;
    } else if (isText(row, *column, m_params.toTime)) {
        column->kind = sheet::Column::Kind::Time;
    } else if (isText(row, *column, m_params.toBoolean)) {
        column->kind = sheet::Column::Kind::Boolean;
    } else if (m_params.toFormula.contains(column->name)) {
        column->kind = sheet::Column::Kind::Formula;
        if (type != MetaInfo::Unknown) {
            return fail(
                u"ERROR writing to Excel file '%1': type of column '%2' is not string/unknown.\n"_s
                    .arg(fileName(), column->name));
        }
    } else if (type == MetaInfo::Key) {
        column->kind = sheet::Column::Kind::Key;
    } else if (type == MetaInfo::Float) {
        column->kind = sheet::Column::Kind::Float;
    }
    return true;
}

bool ActionWriteExcel::isText(const OneRow &row, const sheet::Column &column,
                              const QStringList &list)
{
    return row.getMetaType(column.input).type() == MetaInfo::Unknown && list.contains(column.name);
}

sheet::SheetOptions ActionWriteExcel::sheetOptions() const
{
    sheet::SheetOptions options;
    // Cell formats and the first day are those of the workbook; it adds them.
    options.floatFormat = m_floatFormat;
    options.noNans = m_params.noNans;
    options.equalIsFormula = m_params.equalisFormula;
    options.urlTag = m_params.urlTag;
    options.crop = m_params.crop;
    options.keepOddDates = m_params.keepOddDates;
    options.monthFix = m_params.excelHack;
    return options;
}

bool ActionWriteExcel::showsTime() const
{
    // The other system formats show either a date or a time.
    return m_params.dateFormatExcel == DateDisplay::DateMinutes ||
           m_params.dateFormatExcel == DateDisplay::DateSeconds ||
           m_params.dateFormatExcel == DateDisplay::SystemDateTime;
}

/// Only the formats that some column needs, so that other workbooks keep their styles as they are.
xlsx::MoreFormats ActionWriteExcel::formatsFor(const std::vector<sheet::Column> &columns) const
{
    xlsx::MoreFormats formats;
    formats.days = readsIsoDates() && showsTime();
    for (const sheet::Column &column : columns) {
        formats.dateTimes |= column.kind == sheet::Column::Kind::DateTime;
        formats.times |= column.kind == sheet::Column::Kind::Time;
    }
    return formats;
}

/// Programs show a date in a narrow column as "###".
int ActionWriteExcel::dateDigits(sheet::Column::Kind kind) const
{
    using Kind = sheet::Column::Kind;
    constexpr int kDateDigits = 12;
    constexpr int kDateTimeDigits = 20;
    const bool hasTime = kind == Kind::DateTime || (kind == Kind::Date && showsTime());
    const bool isDate = hasTime || kind == Kind::Date || kind == Kind::Time;
    return hasTime ? kDateTimeDigits : isDate ? kDateDigits : 0;
}

std::vector<double> ActionWriteExcel::columnWidths(const std::vector<sheet::Column> &columns)
{
    std::vector<double> widths = givenWidths(m_params);
    reportExtraWidths(widths.size(), columns.size());
    widths.resize(columns.size());
    for (size_t i = 0; m_params.dateWidths && i < columns.size(); ++i) {
        if (widths[i] == 0) {
            widths[i] = dateDigits(columns[i].kind);
        }
    }
    return widths;
}

void ActionWriteExcel::setLook(const std::vector<sheet::Column> &columns)
{
    QStringList names;
    std::vector<int> dateWidths;
    for (const sheet::Column &column : columns) {
        names << column.name;
        dateWidths.push_back(dateDigits(column.kind));
    }
    xlsx::SheetLook look = sheetLook(m_params, names);
    if (measuresWidths(m_params)) {
        m_run->meter.emplace(sheet::ColumnMeter::Setup{columns, m_floatFormat, m_params.urlTag,
                                                       std::move(dateWidths), look.formats});
    } else {
        look.widths = columnWidths(columns);
    }
    m_run->workbook->setLook(std::move(look));
}

void ActionWriteExcel::makeSheetWriter(std::vector<sheet::Column> columns)
{
    // An updated workbook has its own numbers of the cell formats.
    sheet::SheetOptions options = sheetOptions();
    m_run->workbook->setCellFormats(&options);
    m_run->sheet = std::make_unique<sheet::SheetWriter>(
        m_run->output.writer(), std::move(options), std::move(columns), m_run->dates.get(),
        [this](sheet::CellProblem problem, int column, std::u16string_view text) {
            takeCellProblem(problem, column, text);
        });
}

bool ActionWriteExcel::openSheet(std::vector<sheet::Column> columns)
{
    m_run->formats = formatsFor(columns);
    if (!openWorkbook()) {
        return false;
    }
    m_run->members = std::make_unique<opc::MemberWriter>(m_run->output.writer());
    setLook(columns);
    // The members before the sheet, then the head of the sheet, which stays open for the rows.
    if (const auto begun = m_run->workbook->begin(*m_run->members); !begun) {
        return failWorkbook(begun.fault());
    }
    m_run->losses.resize(columns.size());
    makeSheetWriter(std::move(columns));
    if (m_run->meter && m_run->workbook->isNewSheet()) {
        m_run->sheet->hold();
        return true;
    }
    const auto opened = m_run->workbook->openSheet(*m_run->sheet);
    return opened || failWorkbook(opened.fault());
}

/// The rows that were held for the measurement are written after the widths, which precede them.
bool ActionWriteExcel::beginSheet()
{
    m_run->workbook->setColumnWidths(m_run->meter->widths());
    m_run->meter.reset();
    if (!m_run->workbook->isNewSheet()) {
        return true; // the widths are for the sheet that follows it
    }
    const QByteArray rows = m_run->sheet->takeHeld();
    const auto opened = m_run->workbook->openSheet(*m_run->sheet);
    return opened ? checkSheet(m_run->sheet->put(rows)) : failWorkbook(opened.fault());
}

/// The header is measured with its font and its button.
bool ActionWriteExcel::putHeader()
{
    if (!m_params.firstLineContainsColumnNames) {
        return true;
    }
    if (m_run->meter) {
        m_run->meter->addHeader(sheetLook(m_params, {}).hasBoldHeader, m_params.autoFilter);
    }
    return checkSheet(m_run->sheet->putHeader());
}

// The columns, their formats and their widths are those of the first sheet.
bool ActionWriteExcel::continueInNextSheet()
{
    if (!endSheet()) {
        return false;
    }
    reportSheet();
    const QString full = m_run->workbook->sheetName();
    const bool isFirst = m_run->continuedSheet.isEmpty();
    if (isFirst) {
        m_run->range = namedRange();
        m_run->continuedSheet = full;
    }
    const QString name = xlsx::nextSheetName(m_run->continuedSheet, m_run->workbook->sheetNames());
    reportNextSheet(full, name, isFirst);
    if (const auto next = m_run->workbook->nextSheet(*m_run->sheet, name); !next) {
        return failWorkbook(next.fault());
    }
    makeSheetWriter(m_run->sheet->columns());
    const auto opened = m_run->workbook->openSheet(*m_run->sheet);
    m_run->firstRow = 1;
    return opened ? putHeader() : failWorkbook(opened.fault());
}

bool ActionWriteExcel::begin(const OneRow &row)
{
    m_run->hasBegun = true;
    // The order of the checks decides which of several mistakes is reported.
    QVector<int> inputs;
    if (!findTestColumn(row) || !findColumns(row, &inputs) || !checkNames(row, inputs)) {
        return false;
    }
    reportMissingNames(row);
    std::vector<sheet::Column> columns;
    for (const int input : inputs) {
        columns.push_back({input, sheet::Column::Kind::Text, row.colName(input)});
        if (!decideKind(row, &columns.back())) {
            return false;
        }
    }
    reportShortYears(columns);
    // A warning only: other programs read larger sheets.
    if (columns.size() > sheet::kMaxColumns) {
        warn(
            u"Warning: You won't be able to open the Excel file '%1' inside MS-Excel because it's too large (nColumns>16384). However, you can still use the file with Corvanta.\n"_s
                .arg(fileName()));
    }
    if (!openSheet(std::move(columns))) {
        return false;
    }
    // After the rows that a changed sheet keeps.
    m_run->firstRow = m_run->sheet->row();
    return putHeader();
}

bool ActionWriteExcel::beginWithoutRows(const OneRow &columns)
{
    // Without alwaysWrite no workbook is opened, and the destination stays unchanged.
    const bool writesHeader = m_params.alwaysWrite && columns.numberOfColumns() > 0;
    return !writesHeader || begin(columns);
}

bool ActionWriteExcel::writeRow(const OneRow &row)
{
    if (m_run->sheet->row() > sheet::kMaxRows && !takeFullSheet()) {
        return false;
    }
    return checkSheet(m_run->sheet->putRow(row.view())) && (!m_run->meter || measure(row));
}

/// The sheet has as many rows as the format allows.
bool ActionWriteExcel::takeFullSheet()
{
    if (!m_params.overflow.isEmpty()) {
        return continueInNextSheet();
    }
    // A header or earlier rows may have passed the limit before.
    if (!std::exchange(m_run->isTooLongKnown, true)) {
        warn(
            u"Warning: You won't be able to open the Excel file '%1' inside MS-Excel because it's too large (nRows>1048576). However, you can still use the file with Corvanta.\n"_s
                .arg(fileName()));
    }
    return true;
}

// The rows are held until then: a sheet begins with the widths of its columns.
bool ActionWriteExcel::measure(const OneRow &row)
{
    constexpr qint64 kMeasuredRows = 1000;
    constexpr qint64 kMaxHeldBytes = qint64(1) << 20;
    m_run->meter->add(row.view());
    const bool isEnough =
        m_run->meter->rows() >= kMeasuredRows || m_run->sheet->heldBytes() >= kMaxHeldBytes;
    return !isEnough || beginSheet();
}

bool ActionWriteExcel::checkSheet(const Result<void, sheet::Error> &result)
{
    if (result) {
        return true;
    }
    switch (result.fault().code) {
    case sheet::Error::TextTooLong:
        return failWith(WriteProblem::TooLarge);
    case sheet::Error::WriteFailed:
        break;
    }
    return failWith(WriteProblem::CannotWrite, {}, reasonOf(m_run->output.target()));
}

std::optional<xlsx::NamedRange> ActionWriteExcel::namedRange()
{
    if (m_params.namedRange.isEmpty()) {
        return std::nullopt;
    }
    // From the first row written to the last, over all columns; a table without rows has only its
    // header.
    const sheet::SheetWriter &sheet = *m_run->sheet;
    const bool skipHeader = m_params.firstLineContainsColumnNames && !m_params.nrIncludeTitleRow;
    const xlsx::NamedRange range{m_params.namedRange, m_run->firstRow + (skipHeader ? 1 : 0),
                                 sheet.row() - 1, sheet.columnCount() - 1,
                                 m_run->workbook->sheetName()};
    if (range.firstRow <= range.lastRow) {
        return range;
    }
    warn(
        u"Warning: the name '%1' is not added to the Excel file '%2': no row was written that it could name\n"_s
            .arg(m_params.namedRange, fileName()));
    return std::nullopt;
}

/// A short table ends before the measurement does, so its sheet begins here.
bool ActionWriteExcel::endSheet()
{
    if (m_run->meter && !beginSheet()) {
        return false;
    }
    // Rows that are still in the package's block are written with the end of the sheet.
    const auto ended = m_run->workbook->finishSheet(*m_run->sheet);
    if (!ended) {
        return failWith(WriteProblem::CannotWrite, {}, reasonFor(ended.fault()));
    }
    return true;
}

bool ActionWriteExcel::completeWorkbook()
{
    if (!endSheet()) {
        return false;
    }
    reportCells();
    reportSheet();
    xlsx::WorkbookEnd end;
    // The program of runExcel calculates only what is marked for it.
    end.recalculate = m_params.forceRecompute || m_params.runExcel;
    end.range = m_run->continuedSheet.isEmpty() ? namedRange() : m_run->range;
    const auto finished = m_run->workbook->finish(*m_run->sheet, end);
    return finished || fail(u"\nERROR: cannot finalize XLSX file '%1'\n"_s.arg(fileName()),
                            reasonFor(finished.fault()));
}

/// Some parts of a workbook may be missing, but none may be lost because the system refused a read.
bool ActionWriteExcel::checkSource()
{
    const SystemError error = m_run->input ? m_run->input->error() : SystemError();
    return !error || fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(m_run->source),
                          failureReason(m_run->source, FileUse::Read, error));
}

void ActionWriteExcel::complete()
{
    // Without a sheet there was no row; release() decides what that means for an update.
    if (!m_run->sheet && !updatesInPlace()) {
        reportNoFile();
    }
    if (!m_run->sheet || !completeWorkbook() || !checkSource()) {
        return;
    }
    // In this order: each object uses the next ones.
    m_run->sheet.reset();
    m_run->workbook.reset();
    m_run->members.reset();
    m_run->input.reset(); // closes the workbook that is to be replaced
    if (runIsGood() && commit() && m_params.runExcel) {
        recalculate();
    }
}

void ActionWriteExcel::release(bool wasComplete)
{
    // All rows were taken and there was none.
    if (m_run && !m_run->hasBegun && wasComplete && updatesInPlace()) {
        swapNothing();
    }
    m_run.reset();
}

} // namespace corvanta
