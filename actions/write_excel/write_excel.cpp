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
constexpr qint64 kSheetRows = 1048576;
constexpr size_t kSheetColumns = 16384;
constexpr int kLongestSheetName = 31;

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
    // A format with markup characters would end the cell's element.
    const bool hasMarkup =
        m_params.floatToString.contains(u'<') || m_params.floatToString.contains(u'&');
    if (hasMarkup || !m_floatFormat.set(m_params.floatToString)) {
        fail(
            u"\nERROR writing to Excel file '%1': '%2' is not a format of a floating-point number\n"_s
                .arg(m_run->file, m_params.floatToString));
        return;
    }
    const QString compression =
        globalParameters() != nullptr ? globalParameters()->compression() : QString();
    if (!compression.isEmpty()) {
        const std::optional<deflate::Level> level = deflate::parseLevel(compression);
        if (!level) {
            fail(
                u"\nERROR writing to Excel file '%1': '%2' is not a level of compression (isal-2, isal-3, zlib-1 to zlib-9)\n"_s
                    .arg(m_run->file, compression));
            return;
        }
        m_run->compression.level = *level;
    }
    const QLocale locale = m_params.dateFormatType == 0 ? QLocale::c() : QLocale::system();
    m_run->dates = std::make_unique<sheet::DateParser>(qtDateFormat(), locale, m_params.excelHack);
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

/// Repeat a call of the package while its writes fail and the user wants to go on.
template <class F> bool ActionWriteExcel::packageCall(F call)
{
    for (;;) {
        const Result<void, zip::Error> done = call();
        if (done) {
            return true;
        }
        if (done.fault().code != zip::Error::WriteFailed || !askRetry()) {
            return false;
        }
    }
}

bool ActionWriteExcel::findTestColumn(const OneRow *row)
{
    return m_run->filter.begin(m_params, *row) ||
           fail(u"\nERROR writing to Excel file '%1': cannot find column '%2' to test\n"_s.arg(
               m_run->file, m_params.testCol));
}

bool ActionWriteExcel::findColumns(const OneRow *row, std::vector<SheetWriter::Column> *columns)
{
    QStringList missing;
    if (m_params.writeAllColumns) {
        for (int i = 0; i < row->numberOfColumns(); ++i) {
            columns->push_back({i, SheetWriter::Kind::Text, row->colName(i)});
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
        columns->push_back({index, SheetWriter::Kind::Text, name});
    }
    return missing.isEmpty();
}

bool ActionWriteExcel::decideKind(const OneRow *row, SheetWriter::Column *column)
{
    const MetaInfo::MetaTypeColumn type = row->getMetaType(column->input).type();
    if (m_params.toDate.contains(column->name)) {
        column->kind = SheetWriter::Kind::Date;
    } else if (m_params.toFormula.contains(column->name)) {
        column->kind = SheetWriter::Kind::Formula;
        if (type != MetaInfo::Unknown) {
            return fail(
                u"ERROR writing to Excel file '%1': type of column '%2' is not string/unknown.\n"_s
                    .arg(m_run->file, column->name));
        }
    } else if (type == MetaInfo::Key) {
        column->kind = SheetWriter::Kind::Key;
    } else if (type == MetaInfo::Float) {
        column->kind = SheetWriter::Kind::Float;
    }
    return true;
}

bool ActionWriteExcel::writeMember(const char *name, const QByteArray &content)
{
    return packageCall([&] { return m_run->output.writer().openMember(name); }) &&
           packageCall([&] { return m_run->output.writer().write(content); }) &&
           packageCall([&] { return m_run->output.writer().closeMember(); });
}

bool ActionWriteExcel::openOutput()
{
    if (!m_run->output.open(m_run->file, {getIdx()}, m_run->compression)) {
        return fail(u"\nERROR writing to Excel file '%1'\n"_s.arg(m_run->file));
    }
    return true;
}

bool ActionWriteExcel::openNewWorkbook(std::vector<SheetWriter::Column> columns)
{
    if (m_params.createDir) {
        QDir().mkpath(QFileInfo(m_run->file).absolutePath());
    }
    if (!openOutput()) {
        return false;
    }
    m_run->sheetName = makeSheetName();
    if (m_run->sheetName.contains(u'<')) {
        warn(
            u"Warning: the sheet name '%1' of the Excel file '%2' contains '<': the workbook may not open.\n"_s
                .arg(m_run->sheetName, m_run->file));
    }
    for (const sheet::FixedMember &member : sheet::leadingMembers(m_params.dateFormatExcel)) {
        if (!writeMember(member.name, member.content)) {
            return isWritten(SheetWriter::Error::Write);
        }
    }
    if (!packageCall([&] { return m_run->output.writer().openMember(sheet::kSheetMember); })) {
        return isWritten(SheetWriter::Error::Write);
    }
    makeSheetWriter(std::move(columns), sheetOptions());
    return isWritten(m_run->sheet->put(sheet::sheetHead()));
}

SheetOptions ActionWriteExcel::sheetOptions() const
{
    SheetOptions options;
    options.floatFormat = m_floatFormat;
    options.noNans = m_params.noNans;
    options.equalIsFormula = m_params.equalisFormula;
    options.urlTag = m_params.urlTag;
    options.crop = m_params.crop;
    return options;
}

void ActionWriteExcel::makeSheetWriter(std::vector<SheetWriter::Column> columns,
                                       const SheetOptions &options)
{
    m_run->sheet = std::make_unique<SheetWriter>(
        m_run->output.writer(), options, std::move(columns), m_run->dates.get(),
        [this] { warnLongCell(); }, [this] { return askRetry(); });
}

void ActionWriteExcel::warnLongCell()
{
    m_longCells.add(u"One Cell is larger than 32768 chars: Excel will complain"_s);
    m_warningFlag = 1;
}

QString ActionWriteExcel::makeSheetName()
{
    QString name = expandString(m_params.sheetName);
    if (name.size() > kLongestSheetName) {
        warn(
            u"WARNING: in the Excelfile '%1' the SheetName '%2' is too long: truncating at 31 chars."_s
                .arg(m_run->file, name));
        name.truncate(kLongestSheetName);
        if (name.back().isHighSurrogate()) {
            name.chop(1);
        }
    }
    return name;
}

bool ActionWriteExcel::begin(const OneRow *row)
{
    m_run->isFirst = false;
    std::vector<SheetWriter::Column> columns;
    if (!findTestColumn(row) || !findColumns(row, &columns)) {
        return false;
    }
    QVector<int> inputs;
    for (const SheetWriter::Column &column : columns) {
        inputs << column.input;
    }
    if (doCheckNameCollision(row, m_params.checkNameCollision, this, inputs, m_run->file) != 0) {
        return false;
    }
    for (SheetWriter::Column &column : columns) {
        if (!decideKind(row, &column)) {
            return false;
        }
    }
    if (columns.size() > kSheetColumns) {
        warn(u"Warning: You won't be able to open the Excel file '%1' inside MS-Excel because it's "
             u"too large "
             "(nColumns>16384). However, you can still use the file with Corvanta.\n"_s.arg(
                 m_run->file));
    }
    if (!openWorkbook(std::move(columns))) {
        return false;
    }
    m_run->firstRow = m_run->sheet->row();
    return !m_params.firstLineContainsColumnNames || isWritten(m_run->sheet->putHeader());
}

/// True without an error; otherwise fails the run with the message of `error`.
bool ActionWriteExcel::isWritten(SheetWriter::Error error)
{
    switch (error) {
    case SheetWriter::Error::None:
        return true;
    case SheetWriter::Error::BufferTooSmall:
        return fail(
            u"\nERROR writing to XLSX file '%1': output buffer too small\n"_s.arg(m_run->file));
    case SheetWriter::Error::Write:
        break;
    }
    return fail(u"\nERROR: cannot write to XLSX file '%1'\n"_s.arg(m_run->file));
}

bool ActionWriteExcel::writeRow(const OneRow *row)
{
    if (m_run->sheet->row() > kSheetRows && !m_run->isTooLong) {
        m_run->isTooLong =
            true; // a header, or rows that were there, may have passed the limit already
        warn(u"Warning: You won't be able to open the Excel file '%1' inside MS-Excel because it's "
             u"too large "
             "(nRows>1048576). However, you can still use the file with Corvanta.\n"_s.arg(
                 m_run->file));
    }
    return isWritten(m_run->sheet->putRow(*row));
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

/// What the defined name covers; nothing when none is wanted.
std::optional<sheet::NamedRange> ActionWriteExcel::namedRange() const
{
    if (m_params.namedRange.isEmpty()) {
        return std::nullopt;
    }
    const SheetWriter &sheet = *m_run->sheet;
    const bool skipHeader = m_params.firstLineContainsColumnNames && !m_params.nrIncludeTitleRow;
    return sheet::NamedRange{m_params.namedRange, m_run->sheetName,
                             m_run->firstRow + (skipHeader ? 1 : 0), sheet.row() - 1,
                             sheet.columnCount() - 1};
}

bool ActionWriteExcel::finishSheet()
{
    SheetWriter &sheet = *m_run->sheet;
    if (m_run->update) {
        return bool(m_run->update->finishSheet(m_run->output.writer(), sheet));
    }
    QByteArray tail = sheet::sheetEndOfRows();
    if (!sheet.linkUses().empty()) {
        tail += "<hyperlinks>" + sheet.hyperlinkElements(0) + "</hyperlinks>";
    }
    tail += sheet::sheetTail();
    if (sheet.put(tail) != SheetWriter::Error::None) {
        return false;
    }
    sheet.commit();
    return packageCall([&] { return m_run->output.writer().closeMember(); });
}

bool ActionWriteExcel::finishWorkbook()
{
    if (m_run->update) {
        return finishUpdatedWorkbook();
    }
    const auto range = namedRange();
    const QByteArray definedName = range ? sheet::definedName(*range) : QByteArray();
    if (!writeMember(sheet::kWorkbookMember, sheet::workbook(m_run->sheetName, definedName))) {
        return false;
    }
    const QStringList &urls = m_run->sheet->urls();
    if (!urls.isEmpty()) {
        const auto part = xlsx::changedRelationships(
            {}, xlsx::hyperlinkRelationships(urls, xlsx::kTransitional, 0));
        if (!part || !writeMember(sheet::kSheetRelsMember, *part)) {
            return false;
        }
    }
    return packageCall([&] { return m_run->output.writer().close(); });
}

void ActionWriteExcel::finish()
{
    if (!m_run) {
        return;
    }
    if (m_run->sheet && m_run->isComplete && runIsGood()) {
        // Rows that wait in the package's block are written with the sheet's end.
        if (!finishSheet()) {
            isWritten(SheetWriter::Error::Write);
        } else if (!finishWorkbook()) {
            fail(u"\nERROR: cannot finalize XLSX file '%1'\n"_s.arg(m_run->file));
        }
        m_run->sheet.reset();
        m_run->update.reset(); // closes the workbook that is about to be replaced
        if (runIsGood() && commit() && m_params.runExcel) {
            recalculate();
        }
    } else if (m_run->isFirst && m_run->isComplete && updatesInPlace()) {
        swapNothing();
    }
    m_run.reset();
}

} // namespace corvanta
