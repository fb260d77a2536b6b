// Makes the action that joins the parts of a merge.
#include "cli/merge/merge_action.h"

#include "cli/convert/file_arguments.h"
#include "cli/file_types.h"
#include "corvanta/action_parameters.h"

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// A sheet is written from what a reader of the part's format reads.
CommandResult<void> checkReaders(const CommandLine &line, const QStringList &parts,
                                 const ActionRegistry &registry)
{
    for (const QString &part : parts) {
        const auto file = inputFile(line, part, registry);
        const auto reader = file ? makeFileAction(registry, FileFormat::Read, *file, {})
                                 : CommandResult<std::unique_ptr<ActionItem>>(file.fault());
        if (!reader) {
            return reader.fault();
        }
    }
    return {};
}

} // namespace

CommandResult<std::unique_ptr<ActionItem>>
makeMerge(const CommandLine &line, const QStringList &parts, const ActionRegistry &registry)
{
    const QString &output = line.arguments.first();
    const auto file = outputFile(line, output, registry);
    if (!file) {
        return file.fault();
    }
    if (file->extension == "xlsx"_L1) {
        const auto readers = checkReaders(line, parts, registry);
        return readers ? CommandResult<std::unique_ptr<ActionItem>>(nullptr) : readers.fault();
    }
    QStringList settings = settingsOf(u"parts"_s, parts);
    if (line.has(u"--union"_s)) {
        settings << u"byName=1"_s;
    }
    auto action = makeWriter(registry, u"mergeFiles"_s, output, settings);
    if (!action) {
        return action;
    }
    const auto problems = dynamic_cast<ActionParameters &>(**action).problems();
    if (!problems.isEmpty()) {
        return badUsage(problems.first().text + u"; a workbook (xlsx) gets a sheet per part"_s);
    }
    return action;
}
