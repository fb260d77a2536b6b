// plugins: print the modules that were found, and why some of them are not used.
#include "cli/commands.h"
#include "cli/print/output.h"
#include "corvanta/action_registry.h"
#include "corvanta/main_ui.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// The command prints itself what the registry would log.
class SilentSink final : public LogSink
{
public:
    void add(const LogMessage &) override {}
};

QJsonObject moduleEntry(const Module &module)
{
    QJsonObject entry{{u"name"_s, module.name()},
                      {u"file"_s, module.file},
                      {u"loaded"_s, module.problem.isEmpty()}};
    if (!module.problem.isEmpty()) {
        entry[u"reason"_s] = module.problem;
        return entry;
    }
    entry[u"version"_s] = module.version;
    entry[u"actions"_s] = QJsonArray::fromStringList(module.actions);
    if (!module.unused.isEmpty()) {
        entry[u"unusedActions"_s] = QJsonArray::fromStringList(module.unused);
    }
    return entry;
}

/// The name and file of a module, then its actions or why it was refused.
QString moduleText(const Module &module)
{
    const QString first = u"%1  %2\n"_s.arg(module.name(), QDir::toNativeSeparators(module.file));
    if (!module.problem.isEmpty()) {
        return first + u"    not used: %1\n"_s.arg(module.problem);
    }
    QString text = first + u"    version %1, actions: %2\n"_s.arg(QString::number(module.version),
                                                                  module.actions.join(u", "_s));
    if (!module.unused.isEmpty()) {
        text += u"    not used, because an earlier module has actions with these names: %1\n"_s.arg(
            module.unused.join(u", "_s));
    }
    return text;
}

QString listText(const std::vector<Module> &modules)
{
    QString text;
    for (const Module &module : modules) {
        text += moduleText(module);
    }
    text += u"\nSearched folders, in order:\n"_s;
    for (const QString &folder : ActionRegistry::searchFolders()) {
        const QString note = QFileInfo(folder).isDir() ? QString() : u" (does not exist)"_s;
        text += u"    %1%2\n"_s.arg(QDir::toNativeSeparators(folder), note);
    }
    return text;
}

} // namespace

CommandOptions pluginsOptions()
{
    static constexpr OptionInfo kOptions[] = {
        {"--json", "", "print a JSON array with an object per module"},
    };
    return {{{"", kOptions}}, 0, u"no argument is expected"_s};
}

CommandResult<void> pluginsCommand(const CommandLine &line)
{
    SilentSink silent;
    ActionRegistry registry;
    {
        const LogScope scope({&silent, {}});
        registry.loadAll();
    }
    if (!line.has(u"--json"_s)) {
        printText(listText(registry.modules()));
        return {};
    }
    QJsonArray entries;
    for (const Module &module : registry.modules()) {
        entries << moduleEntry(module);
    }
    printJson(QJsonDocument(entries));
    return {};
}
