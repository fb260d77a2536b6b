// The warnings of writeExcel: one per cause, with the number of cases and the first place.
//
// Cells are counted while the rows are written and reported after them. Names are written as they
// are, because other programs accept what some spreadsheet programs reject.
#include "actions/shared/params/writer_params.h"
#include "actions/write_excel/write_excel.h"
#include "actions/write_excel/write_excel_look.h"
#include "base/counted.h"
#include "base/nearest_name.h"
#include "codecs/xlsx/name_rules.h"
#include "corvanta/target_file.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Hyperlinks of one sheet that MS-Excel reads.
constexpr qint64 kMaxLinks = 65530;
/// A long text is cut in messages.
constexpr qsizetype kMaxShownUnits = 60;

/// What is wrong with a name, to follow it in a sentence.
const char *faultText(xlsx::NameFault fault)
{
    switch (fault) {
        // Each part completes the sentence "the name ... ".
    case xlsx::NameFault::Empty:
        return QT_TRANSLATE_NOOP("Problems", "is empty");
    case xlsx::NameFault::Character:
        return QT_TRANSLATE_NOOP("Problems",
                                 "contains one of / \\ ? * [ ] : or a control character");
    case xlsx::NameFault::Quote:
        return QT_TRANSLATE_NOOP("Problems", "begins or ends with an apostrophe");
    case xlsx::NameFault::Reserved:
        return QT_TRANSLATE_NOOP("Problems", "is reserved");
    case xlsx::NameFault::OnlyCase:
        return QT_TRANSLATE_NOOP("Problems", "differs only in letter case from '%1'");
    case xlsx::NameFault::NotAName:
        return QT_TRANSLATE_NOOP("Problems",
                                 "is not a letter or _ followed by letters, digits, _ and .");
    case xlsx::NameFault::Reference:
        return QT_TRANSLATE_NOOP("Problems", "is also a reference to cells");
    case xlsx::NameFault::TooLong:
        break;
    }
    return QT_TRANSLATE_NOOP("Problems", "has more than 255 characters");
}

/// The same in English. `similar` as in sameButCase().
QString faultText(xlsx::NameFault fault, const QString &similar)
{
    const QString text = QString::fromLatin1(faultText(fault));
    return fault == xlsx::NameFault::OnlyCase ? text.arg(similar) : text;
}

/// A cell may hold a whole document, so only its beginning is shown.
QString shown(std::u16string_view text)
{
    const QString whole(reinterpret_cast<const QChar *>(text.data()),
                        static_cast<qsizetype>(text.size()));
    return whole.size() > kMaxShownUnits ? whole.left(kMaxShownUnits) + u"..."_s : whole;
}

} // namespace

/// Counted here and reported at the end: a warning per cell would hide all others.
void ActionWriteExcel::takeCellProblem(sheet::CellProblem problem, int column,
                                       std::u16string_view text)
{
    const auto place = [&] {
        return u"'%1' in row %2"_s.arg(shown(text), QString::number(rowNumber()));
    };
    const auto row = [&] { return u"in row %1"_s.arg(rowNumber()); };
    ColumnLosses &losses = m_run->losses[static_cast<size_t>(column)];
    switch (problem) {
    case sheet::CellProblem::LongText:
        warnLongCell();
        break;
    case sheet::CellProblem::CutText:
        losses.cutTexts.add(row);
        break;
    case sheet::CellProblem::OddText:
        losses.oddTexts.add(row);
        break;
    case sheet::CellProblem::NotADate:
        losses.notDates.add(place);
        break;
    case sheet::CellProblem::EarlyDate:
        losses.earlyDates.add(place);
        break;
    case sheet::CellProblem::LongFraction:
        losses.longFractions.add(place);
        break;
    case sheet::CellProblem::Zone:
        losses.zones.add(place);
        break;
    case sheet::CellProblem::NotFinite:
        losses.notFinite.add(row);
        break;
    }
}

/// One message per cell, for a limited number of cells.
void ActionWriteExcel::warnLongCell()
{
    constexpr int kMaxWarnings = 50;
    if (m_run->longCells < kMaxWarnings) {
        warn(u"One Cell is larger than 32768 chars: Excel will complain"_s);
    } else if (m_run->longCells == kMaxWarnings) {
        warn(
            u"One Cell is larger than 32768 chars: Excel will complain. Some more warnings won't be reported."_s);
    } else {
        return;
    }
    ++m_run->longCells;
}

void ActionWriteExcel::reportMissingNames(const OneRow &columns)
{
    reportMissingNames(columns, shared::kToDate, m_params.toDate);
    reportMissingNames(columns, shared::kToDateTime, m_params.toDateTime);
    reportMissingNames(columns, shared::kToTime, m_params.toTime);
    reportMissingNames(columns, shared::kToBoolean, m_params.toBoolean);
    reportMissingNames(columns, kToFormula, m_params.toFormula);
    reportMissingNames(columns, kColumnFormats, formattedColumns(m_params, columns.schema().names));
}

void ActionWriteExcel::reportMissingNames(const OneRow &columns, const char *list,
                                          const QStringList &names)
{
    QStringList missing;
    for (const QString &name : names) {
        if (columns.getIndexOfColumn(name) < 0) {
            missing << name;
        }
    }
    if (!missing.isEmpty()) {
        warn(u"Warning: writing to Excel file '%1': cannot find %2 of %3: '%4'\n"_s.arg(
                 fileName(), counted(missing.size(), u"column"_s), QString::fromLatin1(list),
                 missing.join(u"', '")),
             missing.size() == 1 ? missingColumnReason(missing.front(), columns.schema().names)
                                 : QString());
    }
}

/// A width without a column is usually one comma too many.
void ActionWriteExcel::reportExtraWidths(size_t widths, size_t columns)
{
    if (widths > columns) {
        warn(u"Warning: writing to Excel file '%1': columnWidths has %2, but %3 written\n"_s.arg(
            fileName(), counted(static_cast<qint64>(widths), u"width"_s),
            columns == 1 ? u"1 column is"_s : u"%1 columns are"_s.arg(columns)));
    }
}

/// A defined name cannot cover several sheets.
void ActionWriteExcel::reportNextSheet(const QString &full, const QString &next, bool isFirst)
{
    MainUI::addLog(
        MainUI::Info,
        u"Note: the sheet '%1' of the Excel file '%2' is full: row %3 of the table and those after it are written to the sheet '%4'\n"_s
            .arg(full, fileName(), QString::number(rowNumber()), next));
    if (isFirst && m_run->range) {
        warn(
            u"Warning: the name '%1' of the Excel file '%2' covers only the rows in the sheet '%3': the table continues in the sheet '%4'\n"_s
                .arg(m_params.namedRange, fileName(), full, next));
    }
}

/// A text such as 31/01/26 would become a date of 1926 without a message.
void ActionWriteExcel::reportShortYears(const std::vector<sheet::Column> &columns)
{
    const bool hasDates = std::any_of(columns.begin(), columns.end(), [](const auto &column) {
        return column.kind == sheet::Column::Kind::Date;
    });
    if (hasDates && sheet::hasShortYears(dateFormatName())) {
        warn(
            u"Warning: writing to Excel file '%1': the date format '%2' has years of two digits, which are read as 1900 to 1999\n"_s
                .arg(fileName(), dateFormatName()));
    }
}

/// Only a warning: some programs open such workbooks.
void ActionWriteExcel::reportSheetName(const QString &name, const QStringList &others)
{
    for (const xlsx::NameFault fault : xlsx::sheetNameFaults(name, others)) {
        warn(
            u"Warning: the sheet name '%1' of the Excel file '%2' %3: the workbook may not open.\n"_s
                .arg(name, fileName(), faultText(fault, xlsx::sameButCase(name, others))));
    }
}

/// Names that differ only in letter case are one name in a workbook.
void ActionWriteExcel::reportRangeName(const QStringList &others)
{
    const QString &name = m_params.namedRange;
    if (name.isEmpty()) {
        return;
    }
    for (const xlsx::NameFault fault : xlsx::rangeNameFaults(name)) {
        warn(
            u"Warning: the range name '%1' of the Excel file '%2' %3: the workbook may not open.\n"_s
                .arg(name, fileName(), faultText(fault, {})));
    }
    const QString similar = xlsx::sameButCase(name, others);
    if (!similar.isEmpty()) {
        warn(
            u"Warning: the range name '%1' of the Excel file '%2' differs only in letter case from '%3', which it replaces.\n"_s
                .arg(name, fileName(), similar));
    }
}

/// One warning per column and cause.
void ActionWriteExcel::reportCells()
{
    const auto &columns = m_run->sheet->columns();
    for (size_t i = 0; i < columns.size(); ++i) {
        const ColumnLosses &losses = m_run->losses[i];
        const QString &name = columns[i].name;
        reportCells(losses.notDates, u"text"_s, name,
                    (losses.notDates.count() == 1 ? u"does"_s : u"do"_s) +
                        u" not match the date format '%1'"_s.arg(dateFormatName()));
        reportCells(losses.earlyDates, u"date"_s, name,
                    (losses.earlyDates.count() == 1 ? u"is"_s : u"are"_s) +
                        u" before the first day of the workbook, in 1900 or 1904"_s);
        reportCells(losses.longFractions, u"time"_s, name,
                    isOrAre(losses.longFractions.count()) + u" rounded to milliseconds"_s);
        reportCells(losses.zones, u"time"_s, name,
                    isOrAre(losses.zones.count()) + u" written without the zone"_s);
        reportCells(losses.notFinite, u"number"_s, name,
                    isOrAre(losses.notFinite.count()) +
                        u" not finite (nan, inf or -inf) and left out"_s);
        reportCells(losses.cutTexts, u"text"_s, name,
                    (losses.cutTexts.count() == 1 ? u"is"_s : u"are"_s) +
                        u" cut to fewer than 32768 characters"_s);
        reportCells(
            losses.oddTexts, u"text"_s, name,
            (losses.oddTexts.count() == 1 ? u"has"_s : u"have"_s) +
                u" characters that XML cannot contain (U+FFFE and half surrogate pairs are replaced, U+FFFF is kept and the workbook may not open)"_s);
    }
}

void ActionWriteExcel::reportCells(const Occurrences &cells, const QString &noun,
                                   const QString &column, const QString &problem)
{
    if (cells.any()) {
        warn(u"Warning: writing to Excel file '%1': %2 of column '%3' %4; the first is %5\n"_s.arg(
            fileName(), counted(cells.count(), noun), column, problem, cells.first()));
    }
}

xlsx::WrittenCells ActionWriteExcel::writtenCells() const
{
    const sheet::SheetWriter &sheet = *m_run->sheet;
    xlsx::WrittenCells written;
    written.range = {m_run->firstRow, sheet.row() - 1, 0, sheet.columnCount() - 1};
    written.removesOlderRows = m_run->workbook->removesOlderRows();
    if (m_params.firstLineContainsColumnNames) {
        for (const sheet::Column &column : sheet.columns()) {
            written.header << column.name;
        }
    }
    return written;
}

/// Of two actions that update one sheet, starting at the same row, only the last one's rows stay.
void ActionWriteExcel::reportReplacedRows(const QString &sheet, qint64 startRow1)
{
    for (const WrittenRows &rows : takeWrittenRows(fileName(), sheet, startRow1)) {
        const qint64 count = rows.last - rows.first + 1;
        warn(
            u"Warning: %1 from row %2 in the sheet '%3' of the Excel file '%4', which the action '%5' has just written, %6 replaced (startRow='0' writes below them).\n"_s
                .arg(counted(count, u"row"_s), QString::number(rows.first), sheet, fileName(),
                     rows.action, isOrAre(count)));
    }
}

// Only after the last row is it known whether the sheet passes a limit.
void ActionWriteExcel::reportSheet()
{
    const QString &sheet = m_run->workbook->sheetName();
    const xlsx::WrittenCells written = writtenCells();
    addWrittenRows(fileName(), sheet, written.range.firstRow, written.range.lastRow);
    if (written.range.lastRow < written.range.firstRow) {
        warn(
            u"Warning: no row is written to the sheet '%1' of the Excel file '%2': there are neither rows nor column names.\n"_s
                .arg(sheet, fileName()));
    }
    if (const qint64 links = m_run->workbook->linkCount(); links > kMaxLinks) {
        warn(
            u"Warning: the sheet '%1' of the Excel file '%2' has %3 hyperlinks, but MS-Excel reads only 65530: the workbook may not open.\n"_s
                .arg(sheet, fileName(), QString::number(links)));
    }
    const xlsx::SheetConflicts conflicts = m_run->workbook->conflicts(written);
    for (const QString &table : conflicts.tables) {
        warn(
            u"Warning: the header row of the table '%1' in the sheet '%2' of the Excel file '%3' is overwritten, and no longer has the names of the table's columns: the workbook may not open.\n"_s
                .arg(table, sheet, fileName()));
    }
    for (const xlsx::SheetConflicts::RowsBelow &rows : conflicts.rowsBelow) {
        warn(
            u"Warning: %1 from row %2 in the sheet '%3' of the Excel file '%4' %5 below the table '%6', which does not include what is below it: extend the table in a spreadsheet program.\n"_s
                .arg(counted(rows.count, u"row"_s), QString::number(rows.firstRow), sheet,
                     fileName(), isOrAre(rows.count), rows.table));
    }
    if (conflicts.emptyRows > 0) {
        const qint64 first = written.range.firstRow;
        warn(
            u"Warning: the rows are written from row %1 on in the sheet '%2' of the Excel file '%3', below %4 without a value: delete these rows, or set startRow='%5'.\n"_s
                .arg(QString::number(first), sheet, fileName(),
                     counted(conflicts.emptyRows, u"row"_s),
                     QString::number(first - conflicts.emptyRows)));
    }
    if (!conflicts.mergedRanges.empty()) {
        warn(
            u"Warning: %1 in the sheet '%2' of the Excel file '%3' may hide written cells; the first is %4.\n"_s
                .arg(counted(static_cast<qint64>(conflicts.mergedRanges.size()), u"merged range"_s),
                     sheet, fileName(), xlsx::rangeText(conflicts.mergedRanges.front())));
    }
}

QString ActionWriteExcel::reasonOfNoFile() const
{
    return m_params.alwaysWrite ? u"the input has neither columns nor rows"_s
                                : u"the input has no rows (alwaysWrite='1' writes its header)"_s;
}

void ActionWriteExcel::reportNoFile()
{
    warn(u"Warning: the Excel file '%1' is not written: %2.\n"_s.arg(fileName(), reasonOfNoFile()));
}

// Problems that do not depend on the input. The others are found while the rows are written.
QVector<ParameterProblem> ActionWriteExcel::problems() const
{
    FloatFormat format;
    QVector<ParameterProblem> problems;
    if (!format.set(m_params.floatToString) || !sheet::printsNumbers(format)) {
        problems << ParameterProblem{
            QString::fromLatin1(shared::kFloatToString),
            QCoreApplication::translate("Problems",
                                        "'%1' is not a format of a floating-point number")
                .arg(m_params.floatToString)};
    }
    return problems + dateProblems() + nameProblems() + lookProblems();
}

QVector<ParameterProblem> ActionWriteExcel::lookProblems() const
{
    QVector<ParameterProblem> problems;
    for (const LookProblem &problem : corvanta::lookProblems(m_params)) {
        problems << ParameterProblem{
            QString::fromLatin1(problem.parameter),
            QCoreApplication::translate("Problems", problem.text).arg(problem.value)};
    }
    return problems;
}

// Warnings: such a graph still writes its workbook, only not the dates that its user expects.
QVector<ParameterProblem> ActionWriteExcel::dateProblems() const
{
    const QString format = dateFormatName();
    if (m_params.toDate.isEmpty() || (!format.isEmpty() && !sheet::hasShortYears(format))) {
        return {};
    }
    const QString text =
        format.isEmpty()
            ? QCoreApplication::translate(
                  "Problems", "ToDate lists columns, but without a date format no text is a date")
            : QCoreApplication::translate(
                  "Problems", "'%1' has years of two digits, which are read as 1900 to 1999")
                  .arg(format);
    return {{QString::fromLatin1(kDateFormat), text, ParameterProblem::Severity::Warning}};
}

QVector<ParameterProblem> ActionWriteExcel::nameProblems() const
{
    QVector<ParameterProblem> problems;
    const auto add = [&](const char *parameter, const QString &name,
                         const QVector<xlsx::NameFault> &faults) {
        for (const xlsx::NameFault fault : faults) {
            problems << ParameterProblem{
                QString::fromLatin1(parameter),
                QCoreApplication::translate("Problems", "'%1' %2: the workbook may not open")
                    .arg(name, QCoreApplication::translate("Problems", faultText(fault))),
                ParameterProblem::Severity::Warning};
        }
    };
    if (addsSheet()) {
        const QString name = expandString(m_params.sheetName);
        add(shared::kSheetName, name, xlsx::sheetNameFaults(name, {}));
    }
    if (!m_params.namedRange.isEmpty()) {
        add(kNamedRange, m_params.namedRange, xlsx::rangeNameFaults(m_params.namedRange));
    }
    return problems;
}

} // namespace corvanta
