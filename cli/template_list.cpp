// Lists the markers and chart tags of a template, which a run would replace.
#include "template_list.h"

#include "cli/print/output.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "visible_text.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <iterator>
#include <vector>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// How often the mark occurs and in how many runs, where that is more than one.
QString countText(const TemplateMark &mark)
{
    const QString times = mark.count > 1 ? u", %1 times"_s.arg(mark.count) : QString();
    const QString runs = mark.runs > 1 ? u", divided into %1 runs"_s.arg(mark.runs) : QString();
    return times + runs;
}

/// One line for people; the texts of the template are escaped.
QString lineOf(const QString &file, const TemplateMark &mark)
{
    const QString place = u"%1: %2 in %3 (%4)"_s.arg(
        file, visibleText(mark.text), visibleText(mark.location), visibleText(mark.part));
    const QString line = place + countText(mark);
    return mark.remedy.isEmpty() ? line : u"%1: not found in a run: %2"_s.arg(line, mark.remedy);
}

/// The properties of a mark, unchanged; "remedy" only where a run would not find the mark.
QJsonObject entryOf(const TemplateMark &mark)
{
    QJsonObject entry{{u"text"_s, mark.text},
                      {u"location"_s, mark.location},
                      {u"part"_s, mark.part},
                      {u"count"_s, mark.count},
                      {u"runs"_s, mark.runs}};
    if (!mark.remedy.isEmpty()) {
        entry[u"remedy"_s] = mark.remedy;
    }
    return entry;
}

/// A template without marks has a line too: silence would look like a failure.
void print(const QString &file, const QVector<TemplateMark> &marks)
{
    for (const TemplateMark &mark : marks) {
        printText(lineOf(visibleText(file), mark) + u'\n');
    }
    if (marks.isEmpty()) {
        printText(u"%1: no markers and no chart tags\n"_s.arg(visibleText(file)));
    }
}

/// Empty for a template without marks.
QJsonArray entriesOf(const QVector<TemplateMark> &marks)
{
    QJsonArray entries;
    std::transform(marks.begin(), marks.end(), std::back_inserter(entries), entryOf);
    return entries;
}

using Actions = std::vector<ActionParameters *>;

/// The actions whose parameters are declared: plug-ins of others may implement only the contract.
Actions declaredActions(const ActionRegistry &registry)
{
    Actions actions;
    for (const auto &prototype : registry.prototypes()) {
        if (auto *const action = dynamic_cast<ActionParameters *>(prototype.get())) {
            actions.push_back(action);
        }
    }
    return actions;
}

/// Those that have the included template `name`; a usage error that lists all templates if there is
/// none.
CommandResult<Actions> ownersOf(const QString &name, const Actions &actions)
{
    Actions owners;
    QStringList known;
    for (ActionParameters *const action : actions) {
        const QStringList names = action->includedTemplates();
        known += names;
        if (names.contains(name)) {
            owners.push_back(action);
        }
    }
    if (owners.empty()) {
        return badUsage(
            u"there is no included template '%1' (included: %2)"_s.arg(name, known.join(u", "_s)));
    }
    return owners;
}

} // namespace

/// An included template is for one type of action; any other file is for all of them. An action
/// that cannot read the template has logged why.
CommandResult<void> checkTemplate(const QString &file, bool asJson)
{
    ActionRegistry registry;
    registry.loadAll();
    const bool isIncluded = file.startsWith(u'>');
    Actions actions = declaredActions(registry);
    if (isIncluded) {
        auto owners = ownersOf(file, actions);
        if (!owners) {
            return owners.fault();
        }
        actions = *std::move(owners);
    }
    QVector<TemplateMark> marks;
    for (ActionParameters *const action : actions) {
        if (!action->templateMarks(isIncluded ? file : QDir().absoluteFilePath(file), &marks)) {
            return corvanta::Fault{kUsage};
        }
    }
    if (asJson) {
        printJson(QJsonDocument(entriesOf(marks)));
    } else {
        print(file, marks);
    }
    return {};
}
