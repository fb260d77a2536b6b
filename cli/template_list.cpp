// Lists the markers and chart tags of a template, which a run would replace.
#include "template_list.h"

#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "visible_text.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <iterator>

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
        std::printf("%s\n", lineOf(visibleText(file), mark).toUtf8().constData());
    }
    if (marks.isEmpty()) {
        std::printf("%s: no markers and no chart tags\n", visibleText(file).toUtf8().constData());
    }
}

QJsonArray entriesOf(const QVector<TemplateMark> &marks)
{
    QJsonArray entries;
    std::transform(marks.begin(), marks.end(), std::back_inserter(entries), entryOf);
    return entries;
}

/// An array, which is empty for a template without marks.
void printJson(const QVector<TemplateMark> &marks)
{
    std::fputs(QJsonDocument(entriesOf(marks)).toJson().constData(), stdout);
}

} // namespace

/// Each action adds the marks of the kinds of files that it fills. An action that cannot read the
/// template has logged why.
CommandResult<void> checkTemplate(const QString &file, bool asJson)
{
    ActionRegistry registry;
    registry.loadAll();
    QVector<TemplateMark> marks;
    for (const auto &prototype : registry.prototypes()) {
        // Plug-ins of others may implement only the contract.
        auto *const action = dynamic_cast<ActionParameters *>(prototype.get());
        if (action != nullptr && !action->templateMarks(QDir().absoluteFilePath(file), &marks)) {
            return corvanta::Fault{kUsage};
        }
    }
    if (asJson) {
        printJson(marks);
    } else {
        print(file, marks);
    }
    return {};
}
