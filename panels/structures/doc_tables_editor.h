// Edits the tables of writeDocTable, one per input pin: marker, widths, style, header row.
//
// Rows are added and removed with the pins of the action. The markers of the template are read in
// the background and offered; others are kept and marked. Threads: the GUI thread.
#pragma once
#include "panels/background/action_copy.h"
#include "panels/structures/element_table.h"

#include <optional>

namespace corvanta {

class DocTablesEditor final : public ElementTable
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::DocTablesEditor)

public:
    /// Names of markers, without percent signs; nothing if the template cannot be read.
    using Markers = std::optional<QStringList>;
    /// Reads the action's template; called on a worker thread.
    using FindMarkers = Markers (*)(ActionItem &copy);
    DocTablesEditor(const FieldContext &context, FindMarkers findMarkers);
    void actionChanged() override;

protected:
    void addRow() override;
    void removeRow() override;

private:
    FindMarkers m_findMarkers;
    Worker m_worker;
    QString m_template; // of m_markers
    QString m_joins;    // the same: the value of joinRuns
    Markers m_markers;  // nothing: not known
};

} // namespace corvanta
