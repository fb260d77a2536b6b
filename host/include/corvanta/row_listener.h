// Passes the rows of an output pin to a function: for previews, the first rows of a file,
// measuring.
#pragma once
#include "corvanta/action_item.h"

#include <functional>

namespace corvanta {

/// An action outside the graph, see RunOptions::listeners. Threads: the function is called on the
/// action's thread.
class CORVANTA_EXPORT RowListener final : public ActionItem
{
public:
    /// Called with each row, and with null after the last one. Returns false to stop the run,
    /// because no more rows are needed. The columns are complete also for a table without rows.
    using Callback = std::function<bool(const TableSchema &columns, const OneRow *row)>;

    /// `onRow` may use its arguments during the call only. An exception that it throws fails the
    /// run.
    explicit RowListener(Callback onRow);

    // Operations of ActionItem; a listener has no panel, icon or parameters.
    const char *getTypeName() const override { return "listener"; }
    UpdateClassWidget *createPanel(QWidget *) override { return nullptr; }
    QPixmap *getIcon(double) override { return nullptr; }
    QString getDescription() const override { return {}; }
    void showHelp() override {}
    QStringList getKeywords() const override { return {}; }
    void save(std::wostream &out, const QString &name) override { saveAI(out, name, 1); }
    void prepareRun() override;
    ActionItem *newInstance(XMLNode *saved, GlobalParameters *parameters) override;

private:
    bool listen();

    Callback m_onRow;
};

/// The cells of a row as text, one per column; null strings are missing cells.
CORVANTA_EXPORT QStringList textsOf(const OneRow &row);

} // namespace corvanta
