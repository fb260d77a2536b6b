#include "cli/merge/part_list.h"

#include "base/counted.h"
#include "base/mapped.h"
#include "cli/batch/batch_inputs.h"
#include "cli/batch/batch_state.h"
#include "cli/convert/file_arguments.h"
#include "corvanta/main_ui.h"

#include <QDir>

#include <functional>
#include <set>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// The journal knows the files, not the graph: a run without rows may have written none, and must
/// not add what an earlier run has left under its name.
CommandResult<QStringList> partsOfBatch(const QString &folder)
{
    const auto plan = BatchPlan::read(folder);
    if (!plan) {
        return plan.fault();
    }
    const auto inputs = inputsOfBatch(folder);
    if (!inputs) {
        return inputs.fault();
    }
    BatchState state(*plan, *inputs);
    state.update();
    const BatchCounts counts = state.counts();
    if (counts.done < counts.inputs) {
        return Fault{kFailed, u"%1 of the batch in '%2' %3 not done"_s.arg(
                                  counted(counts.inputs - counts.done, u"input"_s), folder,
                                  isOrAre(counts.inputs - counts.done))};
    }
    const QStringList parts = state.outputs();
    if (parts.isEmpty()) {
        return Fault{kFailed, u"the runs of the batch in '%1' have written no file"_s.arg(folder)};
    }
    if (parts.size() < counts.inputs) {
        MainUI::addLog(MainUI::Info, u"%1 of the batch wrote no file"_s.arg(
                                         counted(counts.inputs - parts.size(), u"input"_s)));
    }
    return parts;
}

CommandResult<QStringList> listedParts(const QString &word)
{
    if (isBatchFolder(word)) {
        return partsOfBatch(word);
    }
    const auto listed = namesInList(word, u"--parts-from"_s);
    return listed ? mapped<QStringList>(*listed, std::mem_fn(&ListedName::name))
                  : CommandResult<QStringList>(listed.fault());
}

/// Nothing is joined twice, and the output is not read.
CommandResult<void> checkParts(const QStringList &parts, const QString &output)
{
    std::set<QString> names;
    for (const QString &part : parts) {
        const QString name = QDir::cleanPath(QDir::current().absoluteFilePath(part));
        if (!names.insert(name).second) {
            return badUsage(u"the part '%1' is named twice"_s.arg(part));
        }
        if (const auto checked = checkNotPattern(name); !checked) {
            return checked.fault();
        }
        if (isSameFile(part, output)) {
            return badUsage(u"the output '%1' is also a part"_s.arg(part));
        }
    }
    return {};
}

} // namespace

CommandResult<QStringList> readParts(const CommandLine &line)
{
    const QString &output = line.arguments.first();
    QStringList parts = expandedPatterns(line.arguments.mid(1));
    if (line.values.contains(u"--parts-from"_s)) {
        const auto listed = listedParts(line.value(u"--parts-from"_s, QString()));
        if (!listed) {
            return listed.fault();
        }
        parts += *listed;
    }
    if (parts.isEmpty()) {
        return badUsage(u"an output file and its parts are required"_s);
    }
    if (const auto checked = checkParts(parts, output); !checked) {
        return checked.fault();
    }
    return parts;
}
