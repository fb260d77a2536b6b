#include "panels/fill/file_fill.h"

#include "corvanta/files.h"
#include "io/input/kept_pipe.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

struct FillTexts
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::FileFill)
};

QStringList valuesOf(const ActionParameters &parameters)
{
    QStringList values;
    for (int i = 0; i < parameters.parameters().size(); ++i) {
        values << parameters.parameterValue(i);
    }
    return values;
}

/// A reader fills only levels that do not exist.
void removeStructures(ActionParameters &parameters)
{
    const QVector<ParameterInfo> infos = parameters.parameters();
    for (int i = 0; i < infos.size(); ++i) {
        if (infos[i].type == ParameterInfo::Type::Structure) {
            parameters.setParameterValue(i, QString());
        }
    }
}

} // namespace

QString noFileReason(const ActionParameters &parameters)
{
    const QStringList names = parameters.inputs();
    if (names.isEmpty() || names.first().isEmpty()) {
        return FillTexts::tr("There is no file to read: it has no name, or the input gives it.");
    }
    QStringList files;
    listFiles(names.first(), &files);
    // Its bytes would be missing in the run.
    return input::isPipe(files.value(0))
               ? FillTexts::tr("\u201c%1\u201d is a pipe, which can be read only once.")
                     .arg(files[0])
               : QString();
}

FileFill fillFromFile(const ActionCopy &action, int table)
{
    ActionParameters &parameters = *action.parameters;
    FileFill fill;
    LogLines log;
    const LogScope scope({&log, {}});
    removeStructures(parameters);
    const QStringList before = valuesOf(parameters);
    if (!parameters.fillFromInput(table)) {
        // A missing file is only a warning if the action skips such files.
        fill.problem = {NoteLabel::Kind::Error, log.worst().text};
        return fill;
    }
    const QStringList after = valuesOf(parameters);
    for (int i = 0; i < after.size(); ++i) {
        if (after[i] != before[i]) {
            fill.values << FileFill::Value{i, after[i]};
        }
    }
    if (table < 0) {
        fill.tables = parameters.inputTables();
    }
    return fill;
}

} // namespace corvanta
