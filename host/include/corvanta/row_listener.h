// corvanta/row_listener.h
// Shows the rows of an output pin to a function: previews, the first rows of a file, measuring.
#pragma once
#include "corvanta/action_item.h"

#include <functional>

namespace corvanta {

/// An action outside the graph, see RunOptions::listeners. Threads: `see` is called on the action's
/// thread.
class CORVANTA_EXPORT RowListener final : public ActionItem
{
public:
    /// Called with each row, and with null behind the last one. False: enough; what lies before
    /// need not go on, so the run is stopped. The columns are complete also for a table without
    /// rows.
    using See = std::function<bool(const TableSchema &columns, const OneRow *row)>;

    explicit RowListener(See see);

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

    See m_see;
};

} // namespace corvanta
