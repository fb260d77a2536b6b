// Edits the levels of writeJSON and writeXML: a tree of levels and items, the fields of the current
// one that its type uses, and the text that the first rows give.
//
// The rows are those of the input, which is run in the background, or sample values. Threads: the
// GUI thread.
#pragma once
#include "codecs/compose/write_level.h"
#include "corvanta/edit/worker.h"
#include "panels/preview/preview_run.h"
#include "panels/structure_editor.h"

class QPlainTextEdit;

namespace corvanta {

class NoteLabel;

/// What a writer can say about its structures.
struct LevelWriting
{
    /// A text that is written, or why it cannot be written.
    struct Text
    {
        QString text;
        QString problem; ///< empty: none
    };

    /// The beginning of the file that the action would write from these rows.
    Text (*compose)(ActionItem &copy, const PreviewRows &rows);
    /// The level that is used when there is none.
    std::vector<compose::WriteLevel> (*defaultLevels)(bool writeAllColumns,
                                                      const QStringList &toWrite);
};

class WriteLevelsEditor final : public StructureEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::WriteLevelsEditor)

public:
    WriteLevelsEditor(const FieldContext &context, const LevelWriting &writing);
    void refreshContext() override;
    void actionChanged() override;

protected:
    FieldEditor *makeMember(const FieldContext &context) override;
    QString summary(const Element &element, const ParameterInfo &list, int index) const override;
    QString remark(const Element &element, const ParameterInfo &list) const override;
    Element makeElement(const ParameterInfo &list) const override;
    bool showsMember(const Element &element, const ParameterInfo &list,
                     const ParameterInfo &member) const override;

private:
    void addPreview();
    /// The names by which items call levels.
    QStringList levelNames() const;
    /// A level like the default one, with its items if it is the first.
    Element makeLevel(const ParameterInfo &list) const;
    /// Get the rows of the input again, if it has changed.
    void updateRows();
    void updatePreview();

    LevelWriting m_writing;
    QPlainTextEdit *m_text;
    NoteLabel *m_source;    // where the rows come from
    NoteLabel *m_problem;   // why there is no text
    QByteArray m_rowsGraph; // the graph that m_rows are from, without the action itself
    PreviewRows m_rows;     // of the input; none: sample values are shown
    Worker m_worker;
};

} // namespace corvanta
