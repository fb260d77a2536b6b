// Edits the charts of writeReport: which tag of the template gets which columns.
//
// The tags are read from the template in the background. Charts without a tag are kept and marked;
// tags without a chart are offered. Threads: the GUI thread.
#pragma once
#include "panels/background/action_copy.h"
#include "panels/structure_editor.h"

#include <optional>

class QPushButton;

namespace corvanta {

class NoteLabel;

/// A tag in a chart of a template.
struct ChartMark
{
    QString name; ///< the reference of the tag
    int type = 0; ///< of the chart, as it is saved
};

class ChartEditor final : public StructureEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ChartEditor)

public:
    /// The tags in the order of the template, each once; nothing if it cannot be read.
    using Marks = std::optional<std::vector<ChartMark>>;
    /// Reads the action's template; called on a worker thread.
    using FindMarks = Marks (*)(ActionItem &copy);
    ChartEditor(const FieldContext &context, FindMarks findMarks);
    void actionChanged() override;
    void parameterEdited(const QString &name) override;

protected:
    FieldEditor *makeMember(const FieldContext &context) override;
    QString summary(const Element &chart, const ParameterInfo &list, int index) const override;
    QString remark(const Element &chart, const ParameterInfo &list) const override;
    void elementsShown() override;

private:
    /// Number of the type of the current chart.
    int currentType() const;
    QStringList markNames() const;
    /// The tags of the template that have no chart.
    QStringList missingNames() const;
    /// A chart for each tag, in the order of the template, and then those without a tag.
    void addMissing();

    FindMarks m_findMarks;
    Worker m_worker;
    QString m_template; // of m_marks
    QString m_chosen;   // the template that the user has chosen last
    Marks m_marks;      // nothing: not known
    NoteLabel *m_note;
    QPushButton *m_add;
};

} // namespace corvanta
