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
    /// What a template offers; nothing of what cannot be read.
    struct Offers
    {
        std::optional<QStringList> markers; ///< names, without percent signs
        std::optional<QStringList> styles;  ///< ids of table styles
    };
    /// Reads the action's template; called on a worker thread.
    using FindOffers = Offers (*)(ActionItem &copy);
    DocTablesEditor(const FieldContext &context, FindOffers findOffers);
    void actionChanged() override;

protected:
    void addRow() override;
    void removeRow() override;

private:
    FindOffers m_findOffers;
    Worker m_worker;
    QString m_template; // of m_offers
    QString m_joins;    // the same: the value of joinRuns
    Offers m_offers;
};

} // namespace corvanta
