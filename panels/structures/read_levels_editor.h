// Edits the levels of readJSON and readXML: where repeated elements are, and a table of the columns
// that are read from each of them.
//
// Each level is inside the one before it. The paths that the beginning of the file has can be
// chosen; it is read in the background. Threads: the GUI thread.
#pragma once
#include "panels/background/action_copy.h"
#include "panels/structure_editor.h"
#include "panels/structures/level_paths.h"

namespace corvanta {

class ReadLevelsEditor final : public StructureEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ReadLevelsEditor)

public:
    /// Reads the beginning of the action's file; called on a worker thread.
    using FindLevels = SampledLevels (*)(ActionItem &copy);
    ReadLevelsEditor(const FieldContext &context, FindLevels findLevels);
    void actionChanged() override;

protected:
    FieldEditor *makeMember(const FieldContext &context) override;
    QString summary(const Element &level, const ParameterInfo &list, int index) const override;

private:
    /// The levels from the first one to the current one.
    LevelPlaces placesToCurrent() const;
    /// Of a member of the current level.
    QStringList pathsFor(const QString &member) const;
    FieldEditor *makeColumns(const FieldContext &context);

    FindLevels m_findLevels;
    Worker m_worker;
    QStringList m_sampleKey; // the values that the sample depends on
    SampledLevels m_sample;  // empty: not known
};

} // namespace corvanta
