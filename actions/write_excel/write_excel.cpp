#include "actions/write_excel/write_excel.h"

#include "corvanta/name_collision.h"
#include "plugin/catalogue.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kLongCellWarnings = 50;

} // namespace

ActionWriteExcel::ActionWriteExcel(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(catalogueRow("writeExcel"), saved, parameters)
    , m_longCells(
          MainUI::Warning, kLongCellWarnings,
          u"One Cell is larger than 32768 chars: Excel will complain. Some more warnings won't be reported."_s)
{
}

void ActionWriteExcel::start()
{
    m_run = std::make_unique<RunState>();
    m_run->file = expandOutputFile(m_params.fileNameDestination, QString());
    m_longCells.reset();
    if (!setFloatFormat() || !setCompression()) {
        return;
    }
    const QLocale locale = m_params.dateFormatType == 0 ? QLocale::c() : QLocale::system();
    m_run->dates = std::make_unique<sheet::DateParser>(qtDateFormat(), locale, m_params.excelHack);
}

bool ActionWriteExcel::setFloatFormat()
{
    // A format with markup characters would end the cell's element.
    const QString &format = m_params.floatToString;
    const bool hasMarkup = format.contains(u'<') || format.contains(u'&');
    return (!hasMarkup && m_floatFormat.set(format)) ||
           fail(
               u"\nERROR writing to Excel file '%1': '%2' is not a format of a floating-point number\n"_s
                   .arg(m_run->file, format));
}

bool ActionWriteExcel::setCompression()
{
    const QString compression =
        globalParameters() != nullptr ? globalParameters()->compression() : QString();
    if (compression.isEmpty()) {
        return true;
    }
    const std::optional<deflate::Level> level = deflate::parseLevel(compression);
    if (!level) {
        return fail(
            u"\nERROR writing to Excel file '%1': '%2' is not a level of compression (isal-2, isal-3, zlib-1 to zlib-9)\n"_s
                .arg(m_run->file, compression));
    }
    m_run->compression.level = *level;
    return true;
}

QString ActionWriteExcel::qtDateFormat() const
{
    const QLocale system = QLocale::system();
    switch (m_params.dateFormatType) {
    case 0:
        return expandString(m_params.dateFormat);
    case 1:
        return system.dateFormat(QLocale::ShortFormat);
    case 2:
        return system.dateFormat(QLocale::LongFormat);
    case 3:
        return system.timeFormat(QLocale::ShortFormat);
    case 4:
        return system.timeFormat(QLocale::LongFormat);
    case 5:
        return system.dateTimeFormat(QLocale::ShortFormat);
    case 6:
        return system.dateTimeFormat(QLocale::LongFormat);
    default:
        return {};
    }
}

bool ActionWriteExcel::askRetry()
{
    return runIsGood() && MainUI::displayOutOfDiskSpace(m_run->file, getIdx(), true);
}

bool ActionWriteExcel::findTestColumn(const OneRow *row)
{
    return m_run->filter.begin(m_params, *row) ||
           fail(u"\nERROR writing to Excel file '%1': cannot find column '%2' to test\n"_s.arg(
               m_run->file, m_params.testCol));
}

bool ActionWriteExcel::findColumns(const OneRow *row, std::vector<sheet::Column> *columns)
{
    QStringList missing;
    if (m_params.writeAllColumns) {
        for (int i = 0; i < row->numberOfColumns(); ++i) {
            columns->push_back({i, sheet::Column::Kind::Text, row->colName(i)});
        }
    } else if (m_params.toWrite.isEmpty()) {
        return fail(
            u"\nERROR writing to Excel file '%1': no column to write?\n"_s.arg(m_run->file));
    }
    for (const QString &name : m_params.writeAllColumns ? QStringList() : m_params.toWrite) {
        const int index = row->getIndexOfColumn(name);
        if (index < 0) {
            fail(u"\nERROR writing to Excel file '%1': cannot find column '%2' to write\n"_s.arg(
                m_run->file, name));
            missing << name;
        }
        columns->push_back({index, sheet::Column::Kind::Text, name});
    }
    return missing.isEmpty();
}

bool ActionWriteExcel::decideKind(const OneRow *row, sheet::Column *column)
{
    const MetaInfo::MetaTypeColumn type = row->getMetaType(column->input).type();
    if (m_params.toDate.contains(column->name)) {
        column->kind = sheet::Column::Kind::Date;
    } else if (m_params.toFormula.contains(column->name)) {
        column->kind = sheet::Column::Kind::Formula;
        if (type != MetaInfo::Unknown) {
            return fail(
                u"ERROR writing to Excel file '%1': type of column '%2' is not string/unknown.\n"_s
                    .arg(m_run->file, column->name));
        }
    } else if (type == MetaInfo::Key) {
        column->kind = sheet::Column::Kind::Key;
    } else if (type == MetaInfo::Float) {
        column->kind = sheet::Column::Kind::Float;
    }
    return true;
}

sheet::SheetOptions ActionWriteExcel::sheetOptions() const
{
    sheet::SheetOptions options;
    options.floatFormat = m_floatFormat;
    options.noNans = m_params.noNans;
    options.equalIsFormula = m_params.equalisFormula;
    options.urlTag = m_params.urlTag;
    options.crop = m_params.crop;
    return options;
}

/// Write everything of the workbook that precedes the rows.
bool ActionWriteExcel::openSheet(std::vector<sheet::Column> columns)
{
    if (!openWorkbook()) {
        return false;
    }
    zip::PackageWriter &package = m_run->output.writer();
    m_run->members = std::make_unique<opc::MemberWriter>(package, [this] { return askRetry(); });
    if (const auto begun = m_run->workbook->begin(*m_run->members); !begun) {
        return failWorkbook(begun.fault());
    }
    sheet::SheetOptions options = sheetOptions();
    m_run->workbook->setCellFormats(&options);
    m_run->sheet = std::make_unique<sheet::SheetWriter>(
        package, options, std::move(columns), m_run->dates.get(),
        sheet::SheetCallbacks{[this] { warnLongCell(); }, [this] { return askRetry(); }});
    const auto opened = m_run->workbook->openSheet(*m_run->sheet);
    return opened || failWorkbook(opened.fault());
}

void ActionWriteExcel::warnLongCell()
{
    m_longCells.add(u"One Cell is larger than 32768 chars: Excel will complain"_s);
    m_warningFlag = 1;
}

bool ActionWriteExcel::begin(const OneRow *row)
{
    m_run->isFirst = false;
    std::vector<sheet::Column> columns;
    if (!findTestColumn(row) || !findColumns(row, &columns)) {
        return false;
    }
    QVector<int> inputs;
    for (const sheet::Column &column : columns) {
        inputs << column.input;
    }
    if (doCheckNameCollision(row, m_params.checkNameCollision, this, inputs, m_run->file) != 0) {
        return false;
    }
    for (sheet::Column &column : columns) {
        if (!decideKind(row, &column)) {
            return false;
        }
    }
    if (columns.size() > sheet::kMaxColumns) {
        warn(u"Warning: You won't be able to open the Excel file '%1' inside MS-Excel because it's "
             u"too large "
             "(nColumns>16384). However, you can still use the file with Corvanta.\n"_s.arg(
                 m_run->file));
    }
    if (!openSheet(std::move(columns))) {
        return false;
    }
    m_run->firstRow = m_run->sheet->row();
    return !m_params.firstLineContainsColumnNames || checkSheet(m_run->sheet->putHeader());
}

bool ActionWriteExcel::checkSheet(const Result<void, sheet::Error> &result)
{
    if (result) {
        return true;
    }
    switch (result.fault().code) {
    case sheet::Error::TextTooLong:
        return fail(
            u"\nERROR writing to XLSX file '%1': output buffer too small\n"_s.arg(m_run->file));
    case sheet::Error::WriteFailed:
        break;
    }
    return failWrite();
}

bool ActionWriteExcel::failWrite()
{
    return fail(u"\nERROR: cannot write to XLSX file '%1'\n"_s.arg(m_run->file));
}

bool ActionWriteExcel::writeRow(const OneRow *row)
{
    if (m_run->sheet->row() > sheet::kMaxRows && !m_run->isTooLongKnown) {
        // A header or earlier rows may have passed the limit before.
        m_run->isTooLongKnown = true;
        warn(u"Warning: You won't be able to open the Excel file '%1' inside MS-Excel because it's "
             u"too large "
             "(nRows>1048576). However, you can still use the file with Corvanta.\n"_s.arg(
                 m_run->file));
    }
    return checkSheet(m_run->sheet->putRow(row->view()));
}

void ActionWriteExcel::endOfRows()
{
    if (m_run->isFirst) {
        const OneRow *const columns = getInputColumns(0);
        getOutputRowForOutputPin(0)->copySchemaFrom(columns);
        if (m_params.alwaysWrite && runIsGood() && columns->numberOfColumns() > 0) {
            begin(columns);
        }
    }
    m_run->isComplete = runIsGood();
}

bool ActionWriteExcel::step()
{
    while (!yieldRequested()) {
        const OneRow *const row = getNextRowFromInPin(0);
        if (row == nullptr) {
            endOfRows();
            return false;
        }
        getOutputRowForOutputPin(0)->copyFrom(row);
        setRowReadyForOutput(0);
        if (m_run->isFirst && !begin(row)) {
            return false;
        }
        if (m_run->filter.isWanted(*row) && !writeRow(row)) {
            return false;
        }
    }
    return true;
}

xlsx::WorkbookEnd ActionWriteExcel::workbookEnd() const
{
    xlsx::WorkbookEnd end;
    end.recalculate = m_params.forceRecompute || m_params.runExcel;
    if (!m_params.namedRange.isEmpty()) {
        const sheet::SheetWriter &sheet = *m_run->sheet;
        const bool skipHeader =
            m_params.firstLineContainsColumnNames && !m_params.nrIncludeTitleRow;
        end.range = xlsx::NamedRange{m_params.namedRange, m_run->firstRow + (skipHeader ? 1 : 0),
                                     sheet.row() - 1, sheet.columnCount() - 1};
    }
    return end;
}

bool ActionWriteExcel::completeWorkbook()
{
    // Rows that are still in the package's block are written with the end of the sheet.
    if (!m_run->workbook->finishSheet(*m_run->sheet)) {
        return failWrite();
    }
    return m_run->workbook->finish(*m_run->sheet, workbookEnd()) ||
           fail(u"\nERROR: cannot finalize XLSX file '%1'\n"_s.arg(m_run->file));
}

void ActionWriteExcel::finish()
{
    if (!m_run) {
        return;
    }
    if (m_run->sheet && m_run->isComplete && runIsGood()) {
        completeWorkbook();
        m_run->sheet.reset();
        m_run->workbook.reset();
        m_run->members.reset();
        m_run->input.reset(); // closes the workbook that is to be replaced
        if (runIsGood() && commit() && m_params.runExcel) {
            recalculate();
        }
    } else if (m_run->isFirst && m_run->isComplete && updatesInPlace()) {
        swapNothing();
    }
    m_run.reset();
}

} // namespace corvanta
