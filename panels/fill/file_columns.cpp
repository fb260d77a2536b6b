#include "panels/fill/file_columns.h"

#include "panels/background/task_row.h"
#include "panels/fill/file_fill.h"
#include "panels/preview/preview_run.h"

#include <QLayout>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Not every reader has the parameter.
void reset(ActionParameters &parameters, const QString &name)
{
    const int index = parameters.indexOfParameter(name);
    if (index >= 0) {
        parameters.setParameterValue(index, parameters.parameters()[index].defaultValue);
    }
}

/// The action without a choice of columns, and without columns that are not in the file.
ActionCopy withAllColumns(const FieldContext &context)
{
    ActionCopy copy = copyOf(*context.action);
    reset(*copy.parameters, context.info.name);
    reset(*copy.parameters, u"outputFilenames"_s); // of all readers
    for (const ParameterInfo::Condition &condition : context.info.conditions) {
        reset(*copy.parameters, condition.parameter);
    }
    return copy;
}

} // namespace

FileColumnPicker::FileColumnPicker(const FieldContext &context)
    : ListEditor(context, context.info.isRequired
                              ? tr("Type a name and press Enter to add it")
                              : tr("Type a name and press Enter; without one, all are read"))
    , m_row(new TaskRow(tr("List the columns of the file"),
                        tr("Reads the names of the columns from the file, to choose among them"),
                        [this] { read(); }))
{
    layout()->addWidget(m_row);
}

/// Runs the action itself, so that the columns are those of its output.
void FileColumnPicker::read()
{
    if (const QString reason = noFileReason(*context().parameters); !reason.isEmpty()) {
        m_row->setNote({NoteLabel::Kind::Remark, reason});
        return;
    }
    const auto action = std::make_shared<const ActionCopy>(withAllColumns(context()));
    const auto request = std::make_shared<const PreviewRequest>(requestOf(*action->item));
    m_row->run([this, request](const std::stop_token &stop) -> Worker::Show {
        const PreviewRows preview = previewRows(*request, EngineRunner::PinOut, stop);
        return [this, preview] {
            const QStringList names = preview.columns.names;
            if (names.isEmpty()) {
                m_row->setNote(preview.problem);
                return;
            }
            setOffered(names);
            m_row->setNote({NoteLabel::Kind::Remark,
                            tr("Columns in the file: %1.").arg(static_cast<int>(names.size()))});
        };
    });
}

} // namespace corvanta
