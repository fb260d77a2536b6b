// Modes 1 to 4 of writeExcel: an existing workbook gets a new sheet or new rows.
#include "actions/write_excel/spreadsheet_program.h"
#include "actions/write_excel/write_excel.h"
#include "codecs/sheet/new_workbook.h"
#include "corvanta/files.h"
#include "io/replace/file_swap.h"

#include <array>
#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kSheetByNumber = 0;
constexpr int kSheetByName = 1;
/// Day 0 of workbooks that count their days from 1904.
constexpr int kSerialOf1904 = 1462;
constexpr qint64 kLargestStartRow = 0x7FFFFFFF;

xlsx::DateFormat dateFormatOf(int index)
{
    constexpr std::array<const char *, 3> kOwnCodes{"yyyy/mm/dd", "yyyy/mm/dd\\ h:mm",
                                                    "yyyy/mm/dd\\ h:mm:ss"};
    const int own = qMax(index, 0);
    if (own < static_cast<int>(kOwnCodes.size())) {
        return {0, kOwnCodes[static_cast<size_t>(own)]};
    }
    return {sheet::dateNumFmtId(index, 0), {}};
}

/// The part that a new workbook has; its styles 1 and 2 are those of dates and hyperlinks.
QByteArray newStylesPart(int dateFormat)
{
    for (const sheet::FixedMember &member : sheet::leadingMembers(dateFormat)) {
        if (member.name == "xl/styles.xml"_ba) {
            return member.content;
        }
    }
    return {};
}

/// A number from a text; 0 (append) for what is none or lies before the first row.
quint64 startRowOf(const QString &text)
{
    const double number = text.toDouble();
    return number >= 1 ? static_cast<quint64>(qMin(number, double(kLargestStartRow)))
                       : xlsx::SheetSplitter::kAppend;
}

} // namespace

bool ActionWriteExcel::openWorkbook(std::vector<SheetWriter::Column> columns)
{
    if (m_params.mode < 1 || m_params.mode > 4) {
        return openNewWorkbook(std::move(columns));
    }
    const QString source = updatesInPlace() ? m_run->file : expandFile(m_params.fileNameSource);
    const KobiFileInfo info(globalParameters(), source);
    if (info.exists() && info.size() != 0) {
        return openUpdate(source, std::move(columns));
    }
    if (!m_params.createIfNotExists) {
        return fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(source));
    }
    warn(u"\nWarning Cannot read Excel file '%1'\n"_s.arg(source));
    return openNewWorkbook(std::move(columns));
}

bool ActionWriteExcel::openUpdate(const QString &source, std::vector<SheetWriter::Column> columns)
{
    m_run->source = source;
    auto update =
        WorkbookUpdate::open(globalParameters(), source,
                             {[this] { return askRetry(); }, [this] { return runIsGood(); }});
    if (!update) {
        return failUpdate(update.fault());
    }
    m_run->update = std::move(*update);
    if (!chooseSheet()) {
        return false;
    }
    m_run->sheetName = m_run->update->sheetName();
    SheetOptions options = sheetOptions();
    addStyles(&options);
    if (!openOutput()) {
        return false;
    }
    if (const auto copied = m_run->update->copyMembers(m_run->output.writer()); !copied) {
        return failUpdate(copied.fault());
    }
    makeSheetWriter(std::move(columns), options);
    const auto opened = m_run->update->openSheet(m_run->output.writer(), *m_run->sheet);
    return opened || failUpdate(opened.fault());
}

/// Log what went wrong; false.
bool ActionWriteExcel::failUpdate(const Fault<WorkbookUpdate::Problem> &fault)
{
    using Problem = WorkbookUpdate::Problem;
    switch (fault.code) {
    case Problem::Write:
        return isWritten(SheetWriter::Error::Write);
    case Problem::NotAdded:
        return fail(u"\nERROR: cannot open file '%1' in the zipfile for write"_s.arg(fault.detail));
    case Problem::Damaged:
        fail(u"\nERROR: cannot decompress file '%1'.\n"_s.arg(fault.detail));
        break;
    case Problem::NoMember:
        fail(u"\nERROR: cannot open file '%1' in the zipfile for read"_s.arg(fault.detail));
        break;
    case Problem::Stopped:
        return false;
    case Problem::NotUnderstood:
        break;
    }
    return fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(m_run->source));
}

bool ActionWriteExcel::chooseSheet()
{
    const bool changes = m_params.mode == 2 || m_params.mode == 4;
    if (changes && m_params.sheetMode == kSheetByNumber) {
        return chooseByNumber();
    }
    if (changes && m_params.sheetMode == kSheetByName) {
        return chooseByName();
    }
    addSheet();
    return true;
}

void ActionWriteExcel::addSheet()
{
    const QStringList taken = m_run->update->workbook().sheetNames();
    m_run->update->addSheet(xlsx::freeSheetName(makeSheetName(), taken));
}

bool ActionWriteExcel::chooseByNumber()
{
    const int number = expandString(m_params.sheetIdx).toInt();
    const qsizetype count = m_run->update->workbook().sheetNames().size();
    if (number < 1 || number > count) {
        const QString valid = count == 1
                                  ? u"only sheet has the index '1')."_s
                                  : u"valid range of sheet indexes is from 1 to %1)."_s.arg(count);
        return fail(
            u"ExcelWriter: Could not find sheet number '%1' inside the file '%2' (The %3"_s.arg(
                QString::number(number), m_run->source, valid));
    }
    const auto chosen = m_run->update->changeSheet(static_cast<size_t>(number - 1),
                                                   startRowOf(expandString(m_params.startRow)));
    return chosen || failUpdate(chosen.fault());
}

bool ActionWriteExcel::chooseByName()
{
    const QString name = expandString(m_params.sheetName);
    const QStringList names = m_run->update->workbook().sheetNames();
    const qsizetype index = names.indexOf(name);
    if (index >= 0) {
        const auto chosen = m_run->update->changeSheet(static_cast<size_t>(index),
                                                       startRowOf(expandString(m_params.startRow)));
        return chosen || failUpdate(chosen.fault());
    }
    if (m_params.createIfNotExists) {
        addSheet();
        return true;
    }
    const QString available = names.size() == 1
                                  ? u"only sheet is named '%1'."_s.arg(names.front())
                                  : u"%1 available sheets have the following names: '%2'."_s.arg(
                                        QString::number(names.size()), names.join(u"', '"_s));
    return fail(u"ExcelWriter: Could not find sheet named '%1' inside the file '%2'. The %3"_s.arg(
        name, m_run->source, available));
}

void ActionWriteExcel::addStyles(SheetOptions *options)
{
    WorkbookUpdate &update = *m_run->update;
    switch (update.changeStyles(dateFormatOf(m_params.dateFormatExcel),
                                newStylesPart(m_params.dateFormatExcel))) {
    case WorkbookUpdate::Styles::Added:
        break;
    case WorkbookUpdate::Styles::NotAdded:
        warn(u"Warning: Cannot add new Cell Styles (1) inside Excel file"_s);
        break;
    case WorkbookUpdate::Styles::AddedTable:
        warn(u"Warning: Cannot add new Cell Styles (2) inside Excel file"_s);
        break;
    }
    options->datePrefix = "\" s=\"" + QByteArray::number(update.dateStyle()) + "\"><v>";
    options->linkPrefix =
        "\" s=\"" + QByteArray::number(update.hyperlinkStyle()) + "\" t=\"inlineStr\"><is><t>";
    options->firstDay = update.workbook().has1904Dates ? kSerialOf1904 : 0;
}

bool ActionWriteExcel::finishUpdatedWorkbook()
{
    xlsx::WorkbookChange change;
    change.recalculate = m_params.forceRecompute || m_params.runExcel;
    if (const auto range = namedRange()) {
        change.definedName = xlsx::DefinedName{range->name, sheet::rangeReference(*range)};
    }
    return bool(m_run->update->finishWorkbook(m_run->output.writer(), *m_run->sheet, change));
}

/// Put the finished package in its place; false, with the run failed, when that was not possible.
bool ActionWriteExcel::commit()
{
    bool hasSwapped = false;
    const auto move = [&](const QString &temporary, const QString &target) {
        hasSwapped = true;
        return swap(temporary, target);
    };
    const bool done = updatesInPlace() ? m_run->output.commit(move) : m_run->output.commit();
    if (!done && !hasSwapped) {
        fail(u"\nERROR: cannot finalize XLSX file '%1'\n"_s.arg(m_run->file));
    }
    return done;
}

bool ActionWriteExcel::swap(const QString &temporary, const QString &target)
{
    const QString backup = u"%1_tmp2_%2_%3.xlsx"_s.arg(
        target, QString::number(getIdx()), QString::number(MainUI::getNearUniqueRandomID()));
    const SwapObserver observer{
        [this](const QString &from, const QString &to) {
            warn(u"WARNING: failed attempt to rename '%1' to '%2'"_s.arg(from, to));
        },
        [this](int pauseMs) { return pause(pauseMs); }};
    const auto failed = swapFile({temporary, target, backup}, observer);
    if (failed) {
        return fail(u"ERROR: impossible to rename '%1' to '%2'"_s.arg(failed->from, failed->to));
    }
    return true;
}

/// Wait, but no longer than the run lasts; false when it has ended.
bool ActionWriteExcel::pause(int pauseMs) const
{
    constexpr int kSliceMs = 50;
    for (int waited = 0; waited < pauseMs && runIsGood(); waited += kSliceMs) {
        std::this_thread::sleep_for(std::chrono::milliseconds(kSliceMs));
    }
    return runIsGood();
}

/// Kept as required: an input without rows still swaps a package that was never written, which
/// fails and leaves the workbook as it was.
void ActionWriteExcel::swapNothing()
{
    const QString temporary = u"%1_tmp_%2_%3"_s.arg(
        m_run->file, QString::number(getIdx()), QString::number(MainUI::getNearUniqueRandomID()));
    swap(temporary, m_run->file);
    if (m_params.runExcel) {
        recalculate();
    }
}

void ActionWriteExcel::recalculate()
{
    const QString folder = globalParameters()->workingDir();
    // A swap of nothing has failed this run, and the workbook is recalculated all the same; a run
    // that was stopped or that failed elsewhere asks for a yield too.
    const auto mayGoOn = [this] { return runIsGood() || !yieldRequested(); };
    if (!recalculateWorkbook(m_run->file, folder, getIdx(), mayGoOn)) {
        warn(u"Warning: cannot run MS-Excel to finalize XLSX file '%1'\n"_s.arg(m_run->file));
    }
}

} // namespace corvanta
