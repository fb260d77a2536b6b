// The parts are opened twice: first for their columns, so that nothing is written if they differ,
// then for their rows.
#include "actions/merge_files/merge_files.h"

#include "actions/merge_files/merge_format.h"
#include "actions/shared/file_series.h"
#include "base/counted.h"
#include "codecs/parquet/merge/file_merger.h"
#include "corvanta/failure_reason.h"
#include "io/input/run_input.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionMergeFiles::ActionMergeFiles(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kMergeFilesEntry, saved, parameters)
{
}

void ActionMergeFiles::start()
{
    m_names.clear();
    m_done = 0;
    m_rows = 0;
    m_fraction = 0;
}

void ActionMergeFiles::finish()
{
    m_target.discard(); // without effect after complete()
    m_merger.reset();
    m_parquet = nullptr;
}

/// One step: the action has no input pin for which it would have to wait.
bool ActionMergeFiles::step()
{
    if (prepare() && readColumns() && openTarget() && copyRows()) {
        complete();
    }
    return false;
}

QStringList ActionMergeFiles::partNames() const
{
    QStringList names;
    for (const QString &part : m_params.parts) {
        names += namesOfPattern(*this, part);
    }
    return names;
}

/// Only names decide. Empty ones are reported as missing values.
QVector<ParameterProblem> ActionMergeFiles::problems() const
{
    const QString output = expandOutputFile(m_params.fileName, {});
    const MergeFormat format = mergeFormatOf(output);
    if (format == MergeFormat::None && !output.isEmpty()) {
        return {{QString::fromLatin1(kMergedFile),
                 QCoreApplication::translate(
                     "Problems", "files such as '%1' cannot be merged; parquet, csv, txt, tsv, "
                                 "tab, jsonl, ndjson and json can be, the texts also with .gz")
                     .arg(output)}};
    }
    const QStringList names = output.isEmpty() ? QStringList() : partNames();
    for (const QString &name : names) {
        if (mergeFormatOf(name) != format) {
            return {{QString::fromLatin1(kMergedParts),
                     QCoreApplication::translate(
                         "Problems", "the part '%1' does not have the extension of a %2 file, as "
                                     "the output has; convert joins files of several formats")
                         .arg(name, nameOf(format))}};
        }
    }
    return {};
}

/// The patterns are expanded again: files may have appeared since the parameters were checked.
bool ActionMergeFiles::prepare()
{
    if (const auto found = problems(); !found.isEmpty()) {
        return fail(u"Error: mergeFiles: %1\n"_s.arg(found.first().text));
    }
    m_fileName = expandOutputFile(m_params.fileName, {});
    m_names = partNames();
    if (m_names.isEmpty()) {
        return fail(u"Error: mergeFiles: there are no parts to join\n"_s);
    }
    m_merger = makeMerger(mergeFormatOf(m_fileName),
                          m_params.byName ? MergeMatch::Names : MergeMatch::Same);
    m_parquet = dynamic_cast<parquet::FileMerger *>(m_merger.get());
    OneRow *const out = getOutputRowForOutputPin(0);
    out->setColName({u"part"_s, u"rows"_s});
    out->setMetaData({MetaInfo(cell::Type::Text), MetaInfo(cell::Type::Double)});
    return true;
}

/// A pipe would be empty when it is read for its rows.
std::unique_ptr<ByteSource> ActionMergeFiles::openPart(const QString &name)
{
    auto input = std::make_unique<RunInput>(globalParameters(), control(), name, false);
    const bool isPipe = input->file.isOpen() && input->file.kind() == input::Kind::Plain &&
                        !input->file.isRandomAccess();
    if (!input->file.isOpen() || isPipe) {
        fail(u"Error: mergeFiles: cannot open the part '%1'\n"_s.arg(name),
             isPipe ? u"it is a pipe or a device, and parts are read twice"_s
                    : input->file.reason());
        return nullptr;
    }
    return input;
}

/// Codes that need the same remedy share a message; the detail has the rest.
bool ActionMergeFiles::failPart(const QString &name, const Fault<MergeError> &fault,
                                const QString &reason)
{
    switch (fault.code) {
    case MergeError::WriteFailed:
        return failWriting();
    case MergeError::Different:
        return fail(
            u"Error: mergeFiles: the part '%1' does not match the parts before it: %2%3\n"_s.arg(
                name, fault.detail,
                m_params.byName ? QString()
                                : u"; byName='1' (merge --union) joins columns by name"_s));
    case MergeError::NoMemory:
    case MergeError::Unreadable:
    case MergeError::Damaged:
    case MergeError::Unsupported:
    case MergeError::TooLarge:
        break;
    }
    const QString why = fault.detail.isEmpty() ? u"it cannot be read"_s : fault.detail;
    return fail(u"Error: mergeFiles: the part '%1' cannot be merged: %2\n"_s.arg(name, why),
                reason);
}

bool ActionMergeFiles::readColumns()
{
    for (const QString &name : m_names) {
        const auto source = runIsGood() ? openPart(name) : nullptr;
        if (!source) {
            return false;
        }
        if (const auto added = m_merger->addPart(*source); !added) {
            return failPart(name, added.fault(), static_cast<RunInput &>(*source).file.reason());
        }
        addFraction();
    }
    return true;
}

/// As long as the columns of all parts are not known, there is no temporary file.
bool ActionMergeFiles::openTarget()
{
    if (m_params.createDir) {
        // A failure shows when the file is opened.
        QDir().mkpath(QFileInfo(m_fileName).absolutePath());
    }
    const QString remedy = u"createDir='1' creates it"_s;
    if (!m_target.open(m_fileName, {.action = getIdx(),
                                    .retryWrite = [this] { return askRetryWrite(m_fileName); },
                                    .packing = TargetFile::Packing::ByName})) {
        return fail(u"Error: mergeFiles: cannot create file '%1'\n"_s.arg(m_fileName),
                    failureReason(m_target, m_params.createDir ? QString() : remedy));
    }
    return true;
}

bool ActionMergeFiles::failWriting()
{
    return fail(u"Error: mergeFiles: cannot write file '%1'\n"_s.arg(m_fileName),
                failureReason(m_target));
}

bool ActionMergeFiles::copyRows()
{
    if (const auto begun = m_merger->begin(m_target); !begun) {
        return failPart(m_names.last(), begun.fault(), {});
    }
    for (const QString &name : m_names) {
        const auto source = runIsGood() ? openPart(name) : nullptr;
        if (!source) {
            return false;
        }
        const auto rows = m_merger->copyPart(*source, m_target);
        if (!rows) {
            return failPart(name, rows.fault(), static_cast<RunInput &>(*source).file.reason());
        }
        m_rows += *rows;
        putRow(name, *rows);
        addFraction();
    }
    return true;
}

void ActionMergeFiles::putRow(const QString &name, qint64 rows)
{
    RowBuffer *const buffer = bufferForOutputPin(0);
    OneRow *const row = getOutputRowForOutputPin(0);
    row->setCol(0, bytesFromQString(buffer, name));
    row->setCol(1, doubleCell(buffer, static_cast<double>(rows)));
    setRowReadyForOutput(0);
}

/// Each part counts twice.
void ActionMergeFiles::addFraction()
{
    ++m_done;
    m_fraction.store(static_cast<float>(m_done) / (2 * static_cast<float>(m_names.size())),
                     std::memory_order_relaxed);
}

/// Only a complete file replaces the target.
bool ActionMergeFiles::complete()
{
    if (!runIsGood()) {
        return false;
    }
    const auto finished = m_merger->finish(m_target);
    if (!finished && finished.fault().code == MergeError::TooLarge) {
        return failPart(m_names.last(), finished.fault(), {});
    }
    if (!finished || !m_target.commit()) {
        return failWriting();
    }
    warnOfFindings();
    MainUI::addLog(MainUI::Info,
                   u"mergeFiles: %1 with %2 joined to the file '%3'\n"_s.arg(
                       counted(m_names.size(), u"part"_s), counted(m_rows, u"row"_s), m_fileName));
    return true;
}

/// What the merged file does not have.
void ActionMergeFiles::warnOfFindings()
{
    const parquet::MergeFindings found =
        m_parquet == nullptr ? parquet::MergeFindings() : m_parquet->findings();
    if (found.otherMetadata > 0) {
        warn(
            u"Warning: mergeFiles: %1 %2 other key-value metadata than the first part, whose metadata is kept; the first one is '%3'\n"_s
                .arg(counted(found.otherMetadata, u"part"_s), hasOrHave(found.otherMetadata),
                     m_names.value(found.firstOther)));
    }
    if (const qint64 lost = found.pageIndexes + found.bloomFilters; lost > 0) {
        warn(
            u"Warning: mergeFiles: page indexes or Bloom filters of %1 are left out of the file '%2'; no values are lost\n"_s
                .arg(counted(lost, u"column chunk"_s), m_fileName));
    }
}

/// Reads the columns of all parts. What fails otherwise is reported by the run.
QString ActionMergeFiles::reasonToDecode()
{
    if (!m_params.byName || mergeFormatOf(m_params.fileName) != MergeFormat::Parquet) {
        return {};
    }
    RunControl control;
    control.runStatus = RunControl::Running;
    parquet::FileMerger merger(MergeMatch::Names);
    for (const QString &name : partNames()) {
        RunInput input(globalParameters(), control, name, false, InputFile::Report::Nothing);
        const auto added = input.file.isOpen() ? merger.addPart(input) : PartMerger::Done();
        if (!added && added.fault().code == MergeError::Different) {
            return u"'%1': %2"_s.arg(name, added.fault().detail);
        }
    }
    const auto finished = merger.finishColumns();
    return finished ? QString() : finished.fault().detail;
}

} // namespace corvanta
