// The workbook that writeExcel writes to: which one, which sheet of it, and how the finished file
// replaces the destination.
#include "actions/shared/package_reasons.h"
#include "actions/write_excel/spreadsheet_program.h"
#include "actions/write_excel/write_excel.h"
#include "base/platform/files.h"
#include "base/text/sheet_name.h"
#include "codecs/xlsx/new_workbook.h"
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "io/replace/file_swap.h"

#include <QFileInfo>

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr qint64 kMaxStartRow = 0x7FFFFFFF;

/// The start row in a text; kAppend for a text that is not a number, or a number below 1.
quint64 startRowOf(const QString &text)
{
    const double number = text.toDouble();
    return number >= 1 ? static_cast<quint64>(qMin(number, double(kMaxStartRow)))
                       : xlsx::SheetSplitter::kAppend;
}

/// Words for a sheet that has no cells. `kind` as in UpdatedWorkbook::sheetKind().
QString kindReason(const QString &sheet, const QString &kind)
{
    return u"the sheet '%1' is a %2 sheet, which has no cells to write"_s.arg(
        sheet, kind.chopped(kind.endsWith(u"sheet") ? 5 : 0));
}

} // namespace

bool ActionWriteExcel::replacesItsSource() const
{
    return updatesInPlace() ||
           (isUpdate() &&
            platform::finalName(expandFile(m_params.fileNameSource)) ==
                platform::finalName(expandOutputFile(m_params.fileNameDestination, {})));
}

/// A workbook that is its own source is read before it is replaced.
QVector<TargetUse> ActionWriteExcel::targets() const
{
    QVector<TargetUse> uses = RowWriter::targets();
    for (TargetUse &use : uses) {
        use.access = replacesItsSource() ? TargetUse::Access::Update : TargetUse::Access::Create;
    }
    return uses;
}

QStringList ActionWriteExcel::inputs() const
{
    return isUpdate() && !replacesItsSource() ? RowWriter::inputs() : QStringList();
}

bool ActionWriteExcel::lockDestination()
{
    const QString file = platform::finalName(fileName()).value_or(fileName());
    m_run->lock.release();
    const auto locked = m_run->lock.lock(file, lockOptions(fileName()));
    // A run that was stopped has no message.
    return locked || (locked.fault().code == LockError::TimedOut && failLocked(fileName()));
}

/// A copy takes its unchanged members from the source while it is written.
void ActionWriteExcel::openCopySource()
{
    const QString source = expandFile(m_params.fileNameSource);
    // Opening a pipe would wait for its writer.
    if (!isUpdate() || replacesItsSource() || !QFileInfo(source).isFile()) {
        return;
    }
    if (auto input = PackageInput::open(globalParameters(), source)) {
        m_run->input = std::move(*input);
    }
}

bool ActionWriteExcel::openWorkbook()
{
    // Before the workbook is read: what another run writes must not be lost. New workbooks too, so
    // that a run that adds to the workbook waits for its first sheet.
    if (!lockDestination()) {
        return false;
    }
    if (!isUpdate()) {
        return openNewWorkbook();
    }
    m_run->source = updatesInPlace() ? fileName() : expandFile(m_params.fileNameSource);
    const KobiFileInfo info(globalParameters(), m_run->source);
    if (m_run->input || (info.exists() && info.size() != 0)) {
        return openUpdate();
    }
    const QString reason = info.exists() ? u"the file is empty"_s
                                         : failureReason(m_run->source, FileUse::Read, {ENOENT});
    if (!m_params.createIfNotExists) {
        return fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(m_run->source),
                    reason + u": createIfNotExists='1' begins a new workbook"_s);
    }
    // Without its workbook an update becomes a new workbook, with the same destination.
    warn(u"\nWarning Cannot read Excel file '%1'\n"_s.arg(m_run->source),
         reason + u": a new workbook is written instead"_s);
    return openNewWorkbook();
}

bool ActionWriteExcel::openOutput()
{
    return m_run->output.open(fileName(), targetOptions(fileName()), m_run->compression) ||
           failWith(WriteProblem::CannotOpen, {}, reasonOf(m_run->output.target()));
}

bool ActionWriteExcel::openNewWorkbook()
{
    // Only new workbooks get their folders created.
    createFolder(fileName());
    if (!openOutput()) {
        return false;
    }
    const QString name = makeSheetName();
    // The codec escapes "&" and quotes of the name only, so the part is then not well-formed.
    if (name.contains(u'<')) {
        warn(
            u"Warning: the sheet name '%1' of the Excel file '%2' contains '<': the workbook may not open.\n"_s
                .arg(name, fileName()));
    }
    reportSheetName(name, {});
    reportRangeName({});
    m_run->workbook = std::make_unique<xlsx::NewWorkbook>(name, dateFormat(), m_run->formats);
    return true;
}

QString ActionWriteExcel::makeSheetName()
{
    const QString name = expandString(m_params.sheetName);
    if (name.size() > kMaxSheetNameUnits) {
        warn(
            u"WARNING: in the Excelfile '%1' the SheetName '%2' is too long: truncating at 31 chars."_s
                .arg(fileName(), name));
    }
    // Unchanged if it is short enough.
    return shortSheetName(name);
}

bool ActionWriteExcel::openUpdate()
{
    if (!m_run->input) {
        auto input = PackageInput::open(globalParameters(), m_run->source);
        if (!input) {
            const QString reason = compoundFileReason(globalParameters(), m_run->source,
                                                      u"workbook"_s, u".xlsx"_s, u".xls"_s);
            return fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(m_run->source),
                        reason.isEmpty() ? input.fault().detail : reason);
        }
        m_run->input = std::move(*input);
    }
    // The input stays open during the run: unchanged members are copied from it.
    auto workbook =
        xlsx::UpdatedWorkbook::open(m_run->input->reader(), [this] { return runIsGood(); });
    if (!workbook) {
        return failWorkbook(workbook.fault());
    }
    if (!chooseSheet(**workbook)) {
        return false;
    }
    reportRangeName((*workbook)->workbook().definedNames);
    if (m_params.keepStyles) {
        (*workbook)->keepRowStyles();
    }
    // The output is opened last: a failure before it leaves no temporary file.
    addCellFormats(**workbook);
    m_run->workbook = std::move(*workbook);
    return openOutput();
}

bool ActionWriteExcel::failWorkbook(const Fault<opc::Error> &fault)
{
    const QString reason = reasonFor(fault);
    switch (fault.code) {
    case opc::Error::WriteFailed:
        return failWith(WriteProblem::CannotWrite, {}, reason);
    case opc::Error::NotAdded:
        return fail(u"\nERROR: cannot open file '%1' in the zipfile for write"_s.arg(fault.detail));
    // A damaged or missing member is followed by the message about the workbook.
    case opc::Error::Unreadable:
    case opc::Error::Damaged:
    case opc::Error::MemberTooLarge:
        fail(u"\nERROR: cannot decompress file '%1'.\n"_s.arg(fault.detail), reason);
        break;
    case opc::Error::NoMember:
    case opc::Error::Encrypted:
    case opc::Error::UnknownMethod:
    case opc::Error::BadHeader:
        fail(u"\nERROR: cannot open file '%1' in the zipfile for read"_s.arg(fault.detail), reason);
        break;
    case opc::Error::Stopped: // not a failure, so without a message
        return false;
    case opc::Error::Encoding:
    case opc::Error::Malformed:
    case opc::Error::Unexpected:
    case opc::Error::TooLarge:
        return fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(m_run->source), reason);
    }
    return fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(m_run->source));
}

QString ActionWriteExcel::reasonFor(const Fault<opc::Error> &fault) const
{
    if (fault.code == opc::Error::WriteFailed) {
        return reasonOf(m_run->output.target());
    }
    const SystemError error = m_run->input ? m_run->input->error() : SystemError();
    return memberReason(fault, u"workbook"_s, failureReason(m_run->source, FileUse::Read, error));
}

bool ActionWriteExcel::addsSheet() const
{
    // The other modes, and any other way to find a sheet, add one.
    const bool changes = m_params.mode == WorkbookMode::ChangeSheet ||
                         m_params.mode == WorkbookMode::CopyAndChangeSheet;
    return !changes || (m_params.sheetMode != SheetSelection::ByNumber &&
                        m_params.sheetMode != SheetSelection::ByName);
}

bool ActionWriteExcel::chooseSheet(xlsx::UpdatedWorkbook &workbook)
{
    if (addsSheet()) {
        addSheet(workbook);
        return true;
    }
    return m_params.sheetMode == SheetSelection::ByNumber ? chooseByNumber(workbook)
                                                          : chooseByName(workbook);
}

void ActionWriteExcel::addSheet(xlsx::UpdatedWorkbook &workbook)
{
    // Names that differ in case only count as different.
    const QStringList taken = workbook.workbook().sheetNames();
    const QString wanted = makeSheetName();
    const QString name = xlsx::freeSheetName(wanted, taken);
    if (name != wanted) {
        MainUI::addLog(
            MainUI::Info,
            u"Note: the Excel file '%1' already has a sheet '%2': the new sheet is named '%3'\n"_s
                .arg(m_run->source, wanted, name));
    }
    reportSheetName(name, taken);
    workbook.addSheet(name);
}

/// A chart sheet or a dialog has no rows that could be replaced.
bool ActionWriteExcel::changeSheet(xlsx::UpdatedWorkbook &workbook, qsizetype index)
{
    const QString kind = workbook.sheetKind(static_cast<size_t>(index));
    if (!kind.isEmpty() && kind != u"worksheet") {
        return fail(u"\nERROR Reading Excel file '%1'\n"_s.arg(m_run->source),
                    kindReason(workbook.workbook().sheetNames().at(index), kind));
    }
    const quint64 startRow1 = startRowOf(expandString(m_params.startRow));
    const auto chosen = workbook.changeSheet(static_cast<size_t>(index), startRow1);
    if (chosen && startRow1 != xlsx::SheetSplitter::kAppend) {
        reportReplacedRows(workbook.workbook().sheetNames().at(index),
                           static_cast<qint64>(startRow1));
    }
    return chosen || failWorkbook(chosen.fault());
}

bool ActionWriteExcel::chooseByNumber(xlsx::UpdatedWorkbook &workbook)
{
    // A text that is not a number is 0, and thus not found.
    const int number = expandString(m_params.sheetIdx).toInt();
    const qsizetype count = workbook.workbook().sheetNames().size();
    if (number >= 1 && number <= count) {
        return changeSheet(workbook, number - 1);
    }
    // Both endings close the parenthesis that the message opens.
    const QString valid = count == 1
                              ? u"only sheet has the index '1')."_s
                              : u"valid range of sheet indexes is from 1 to %1)."_s.arg(count);
    return fail(u"ExcelWriter: Could not find sheet number '%1' inside the file '%2' (The %3"_s.arg(
        QString::number(number), m_run->source, valid));
}

/// The name is compared exactly, with letter case.
bool ActionWriteExcel::chooseByName(xlsx::UpdatedWorkbook &workbook)
{
    const QString name = expandString(m_params.sheetName);
    const QStringList names = workbook.workbook().sheetNames();
    const qsizetype index = names.indexOf(name);
    if (index >= 0) {
        return changeSheet(workbook, index);
    }
    if (m_params.createIfNotExists) {
        addSheet(workbook);
        return true;
    }
    const QString available = names.size() == 1
                                  ? u"only sheet is named '%1'."_s.arg(names.front())
                                  : u"%1 available sheets have the following names: '%2'."_s.arg(
                                        QString::number(names.size()), names.join(u"', '"_s));
    return fail(u"ExcelWriter: Could not find sheet named '%1' inside the file '%2'. The %3"_s.arg(
        name, m_run->source, available));
}

void ActionWriteExcel::addCellFormats(xlsx::UpdatedWorkbook &workbook)
{
    // Without the formats the cells are written all the same; they then show plain numbers.
    switch (workbook.addCellFormats(dateFormat(), m_run->formats)) {
    case xlsx::UpdatedWorkbook::CellFormats::Added:
        break;
    case xlsx::UpdatedWorkbook::CellFormats::NotAdded:
        warn(u"Warning: Cannot add new Cell Styles (1) inside Excel file"_s);
        break;
    case xlsx::UpdatedWorkbook::CellFormats::AddedTable:
        warn(u"Warning: Cannot add new Cell Styles (2) inside Excel file"_s);
        break;
    }
}

bool ActionWriteExcel::commit()
{
    // swap() logs its own failure; any other one has not reached it.
    bool hasSwapped = false;
    const auto move = [&](const QString &temporary, const QString &target) {
        hasSwapped = true;
        return swap(temporary, target);
    };
    const bool done = updatesInPlace() ? m_run->output.commit(move) : m_run->output.commit();
    if (!done && !hasSwapped) {
        fail(u"\nERROR: cannot finalize XLSX file '%1'\n"_s.arg(fileName()),
             reasonOf(m_run->output.target()));
    }
    return done;
}

bool ActionWriteExcel::swap(const QString &temporary, const QString &target, const QString &reason)
{
    // In the target's folder, because a rename to another file system is a copy.
    const QString backup = withSuffix(
        target, u"_tmp2_%1_%2.xlsx"_s.arg(QString::number(getIdx()),
                                          QString::number(MainUI::getNearUniqueRandomID())));
    const SwapObserver observer{
        [this](const QString &from, const QString &to) {
            warn(u"WARNING: failed attempt to rename '%1' to '%2'"_s.arg(from, to));
        },
        [this](int pauseMs) { return pause(pauseMs); }};
    const auto swapped = swapFile({temporary, target, backup}, observer);
    if (!swapped) {
        const FailedRename &failed = swapped.fault().code;
        return fail(u"ERROR: impossible to rename '%1' to '%2'"_s.arg(failed.from, failed.to),
                    reason.isEmpty() ? failureReason(failed.from, FileUse::Write, failed.error)
                                     : reason);
    }
    return true;
}

/// In slices, so that a stop need not wait for the end.
bool ActionWriteExcel::pause(int pauseMs) const
{
    constexpr int kSliceMs = 50;
    for (int waited = 0; waited < pauseMs && runIsGood(); waited += kSliceMs) {
        std::this_thread::sleep_for(std::chrono::milliseconds(kSliceMs));
    }
    return runIsGood();
}

/// Kept for saved graphs: without input rows the swap is done with a package that was never
/// written. It fails with the messages that graphs rely on, and the workbook is unchanged
/// (updates.behaviour).
void ActionWriteExcel::swapNothing()
{
    const QString temporary = withSuffix(
        fileName(), u"_tmp_%1_%2"_s.arg(QString::number(getIdx()),
                                        QString::number(MainUI::getNearUniqueRandomID())));
    // Before the attempts, which take seconds and name only their files.
    MainUI::addLog(MainUI::Info, u"Note: the Excel file '%1' is not updated: %2\n"_s.arg(
                                     fileName(), reasonOfNoFile()));
    swap(temporary, fileName(), reasonOfNoFile());
    if (m_params.runExcel) {
        recalculate();
    }
}

void ActionWriteExcel::recalculate()
{
    const QString folder = globalParameters()->workingDir();
    // swapNothing() has failed this run, and the workbook is recalculated all the same. A run that
    // was stopped, or that another action failed, also requests a yield.
    const auto isRunning = [this] { return runIsGood() || !yieldRequested(); };
    // The workbook that has this name now: another run may have updated it since then.
    if (!lockDestination()) {
        return;
    }
    if (!recalculateWorkbook(fileName(), folder, getIdx(), isRunning)) {
        warn(u"Warning: cannot run MS-Excel to finalize XLSX file '%1'\n"_s.arg(fileName()));
    }
}

} // namespace corvanta
