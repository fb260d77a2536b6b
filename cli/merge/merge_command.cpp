// merge: runs the action mergeFiles, or a conversion where bytes cannot be joined.
#include "base/counted.h"
#include "cli/commands.h"
#include "cli/convert/file_arguments.h"
#include "cli/convert/pipeline.h"
#include "cli/file_types.h"
#include "cli/merge/merge_action.h"
#include "cli/merge/part_list.h"
#include "cli/merge/workbook_merge.h"
#include "cli/session.h"
#include "corvanta/main_ui.h"
#include "corvanta/params/file_facts.h"
#include "corvanta/row_listener.h"

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr OptionInfo kMergeOptions[] = {
    {"--parts-from", "FILE",
     "also join the files that FILE names, one per line (-: standard input), or those that the "
     "batch in the folder FILE has written"},
    {"--union", "", "join columns by name; a missing one is empty"},
    {"--no-clobber", "", "fail if OUTPUT exists"},
};

/// Run the action, and count the rows that it joins.
CommandResult<void> runMerge(ActionItem &merge, const ActionRegistry &registry, Session *session)
{
    const QString id = u"merge"_s;
    CorvantaGraph graph;
    if (auto added = addAction(&graph, id, merge); !added) {
        return added;
    }
    qint64 rows = 0;
    RunOptions options;
    options.listeners.push_back(
        {u"rows"_s,
         {id, 0},
         std::make_unique<RowListener>([&rows](const TableSchema &, const OneRow *row) {
             rows += row == nullptr ? 0 : static_cast<qint64>(textsOf(*row).value(1).toDouble());
             return true;
         })});
    auto run = session->run(graph, registry, std::move(options));
    session->setResult(rows);
    return run;
}

/// Columns of different types need rows.
CommandResult<void> decodeAndMerge(const CommandLine &line, const QStringList &parts,
                                   const QString &reason, const ActionRegistry &registry,
                                   Session *session)
{
    MainUI::addLog(MainUI::Warning,
                   u"Warning: all parts are decoded and written again, because their bytes cannot "
                   "be joined: %1"_s.arg(reason));
    CommandLine convert = line;
    convert.arguments = parts + QStringList(line.arguments.first());
    const auto graph = makePipeline(convert, registry);
    return graph ? session->run(*graph, registry, {}) : graph.fault();
}

} // namespace

CommandOptions mergeOptions()
{
    CommandOptions options;
    options.groups << OptionGroup{"", kMergeOptions};
    options.arguments = 1;
    options.hasMoreArguments = true;
    options.wrongArguments = u"an output file and its parts are required"_s;
    return Session::options(options);
}

/// Words and formats are checked before anything is read.
CommandResult<void> mergeCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    const auto parts = readParts(line);
    if (!parts) {
        return parts.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    const auto merge = makeMerge(line, *parts, registry);
    if (!merge) {
        return merge.fault();
    }
    if (auto checked = checkClobber(line, line.arguments.first()); !checked) {
        return checked;
    }
    if (*merge == nullptr) {
        return mergeToWorkbook(line, *parts, registry, session->get());
    }
    auto *const facts = dynamic_cast<FileFacts *>(merge->get());
    const QString reason = facts == nullptr ? QString() : facts->reasonToDecode();
    return reason.isEmpty() ? runMerge(**merge, registry, session->get())
                            : decodeAndMerge(line, *parts, reason, registry, session->get());
}
