// One run per part: the first one creates a temporary workbook, each of the others adds a sheet to
// it. The writer copies the sheets that are there without decoding them.
#include "cli/merge/workbook_merge.h"

#include "base/counted.h"
#include "base/occurrences.h"
#include "base/system_error.h"
#include "base/text/sheet_name.h"
#include "cli/convert/file_arguments.h"
#include "cli/convert/pipeline.h"
#include "cli/file_types.h"
#include "cli/session.h"
#include "cli/stop_signals.h"
#include "corvanta/files.h"
#include "corvanta/main_ui.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <set>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// A file that is removed unless it replaces the target.
class TemporaryWorkbook
{
public:
    /// `target` need not exist; its links are followed.
    explicit TemporaryWorkbook(const QString &target)
        : m_target(QFileInfo(target).isSymLink() ? QFileInfo(target).symLinkTarget() : target)
        , m_name(withSuffix(
              m_target, u"_tmp_merge_%1.xlsx"_s.arg(QRandomGenerator::system()->generate(), 0, 36)))
    {
    }
    ~TemporaryWorkbook() { QFile::remove(m_name); }
    TemporaryWorkbook(const TemporaryWorkbook &) = delete;
    TemporaryWorkbook &operator=(const TemporaryWorkbook &) = delete;

    const QString &name() const { return m_name; }
    bool replaceTarget() { return renameTMPFile(m_name, m_target); }

private:
    QString m_target;
    QString m_name;
};

/// Names that spreadsheet programs accept, each once, whatever the case of its letters.
class SheetNames
{
public:
    QString add(const QString &part)
    {
        const QString stem = stemOf(withoutArchive(part));
        const QString valid = validSheetName(stem);
        QString name = valid;
        for (int n = 2; !m_taken.insert(name.toLower()).second; ++n) {
            name = shortSheetName(valid, u'_' + QString::number(n));
        }
        if (name != stem) {
            m_changed.add([&] { return u"'%1' for '%2'"_s.arg(name, part); });
        }
        return name;
    }
    /// The names that differ from the stem of their part.
    const Occurrences &changed() const { return m_changed; }

private:
    std::set<QString> m_taken;
    Occurrences m_changed;
};

/// "NAME=" of the parameter for the name of the sheet.
CommandResult<QString> sheetSetting(const ActionRegistry &registry, const QString &workbook)
{
    const auto writer =
        makeFileAction(registry, FileFormat::Write, {workbook, u"xlsx"_s}, QStringList());
    if (!writer) {
        return writer.fault();
    }
    const auto &parameters = dynamic_cast<ActionParameters &>(**writer);
    const int index = parameters.indexOfParameter(ParameterInfo::Role::SheetName);
    return parameters.parameters().at(index).name + u'=';
}

/// The command line of the conversion that writes one part.
CommandLine lineOf(const CommandLine &line, const QString &part, const QString &target,
                   const QStringList &settings)
{
    CommandLine one = line;
    one.arguments = {part, target};
    one.values[u"--writer"_s] = settings;
    one.flags.removeAll(u"--union"_s);
    return one;
}

} // namespace

CommandResult<void> mergeToWorkbook(const CommandLine &line, const QStringList &parts,
                                    const ActionRegistry &registry, Session *session)
{
    const QString &target = line.arguments.first();
    // A signal between two runs would leave the temporary file.
    const CleanEnd cleanEnd;
    TemporaryWorkbook workbook(target);
    session->setTemporary(workbook.name());
    const auto setting = sheetSetting(registry, workbook.name());
    if (!setting) {
        return setting.fault();
    }
    SheetNames names;
    qint64 rows = 0;
    for (const QString &part : parts) {
        QStringList settings{*setting + names.add(part), u"alwaysWrite=1"_s};
        settings << (&part == &parts.first() ? QStringList() : QStringList(u"mode=1"_s));
        const auto graph = makePipeline(lineOf(line, part, workbook.name(), settings), registry);
        if (!graph) {
            return graph.fault();
        }
        if (auto run = session->run(*graph, registry, {}); !run) {
            session->setResult(rows, {});
            return run;
        }
        rows += session->rows();
    }
    if (!workbook.replaceTarget()) {
        return Fault{kFailed, u"cannot create the file '%1': %2"_s.arg(
                                  target, SystemError::ofLastCall().text())};
    }
    if (names.changed().any()) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: %1 of the workbook '%2' %3 not named like the part; the first is %4"_s.arg(
                counted(names.changed().count(), u"sheet"_s), target,
                isOrAre(names.changed().count()), names.changed().first()));
    }
    session->setResult(rows, {QFileInfo(target).absoluteFilePath()});
    return {};
}
