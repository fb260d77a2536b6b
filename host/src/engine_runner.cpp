#include "corvanta/engine_runner.h"

#include "corvanta/action_registry.h"
#include "corvanta/main_ui.h"
#include "corvanta/run.h"

#include <QSet>

#include <mutex>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Keeps the rows that reach it, as texts.
class Collector final : public ActionItem
{
public:
    Collector(int mostRows, TableSchema *columns, QVector<QStringList> *rows)
        : ActionItem(XMLNode::emptyNode(), nullptr)
        , m_mostRows(mostRows)
        , m_columns(columns)
        , m_rows(rows)
    {
        m_nPinOut = 0;
    }
    const char *getTypeName() const override { return "preview"; }
    UpdateClassWidget *createPanel(QWidget *) override { return nullptr; }
    QPixmap *getIcon(double) override { return nullptr; }
    QString getDescription() const override { return {}; }
    void showHelp() override {}
    QStringList getKeywords() const override { return {}; }
    void save(std::wostream &out, const QString &name) override { saveAI(out, name, 1); }
    void prepareRun() override { m_runFunction = static_cast<RunFunction>(&Collector::collect); }
    ActionItem *newInstance(XMLNode *saved, GlobalParameters *) override
    {
        delete saved;
        return new Collector(m_mostRows, m_columns, m_rows);
    }

private:
    bool collect()
    {
        while (m_mostRows < 0 || m_rows->size() < m_mostRows) {
            const OneRow *const row = getNextRowFromInPin(0);
            *m_columns = getInputColumns(0)->schema();
            if (row == nullptr) {
                return true;
            }
            QStringList texts;
            for (int i = 0; i < row->numberOfColumns(); ++i) {
                texts << row->col(i, static_cast<unsigned short *>(nullptr));
            }
            m_rows->append(texts);
        }
        // Enough rows: what lies before need not go on.
        int expected = RunControl::Running;
        m_control->runStatus.compare_exchange_strong(expected, RunControl::Stopped);
        return true;
    }

    int m_mostRows;
    TableSchema *m_columns;
    QVector<QStringList> *m_rows;
};

/// The part of a graph that an action's pin hangs on.
CorvantaGraph upTo(const CorvantaGraph &graph, const QString &id)
{
    QSet<QString> needed{id};
    for (bool grew = true; grew;) {
        grew = false;
        for (const CorvantaGraph::Link &link : graph.links) {
            if (needed.contains(link.to.action) && !needed.contains(link.from.action)) {
                needed.insert(link.from.action);
                grew = true;
            }
        }
    }
    CorvantaGraph part = graph;
    part.actions.removeIf([&](const CorvantaGraph::Action &action) { return !needed.contains(action.id); });
    part.links.removeIf([&](const CorvantaGraph::Link &link) { return !needed.contains(link.to.action); });
    return part;
}

} // namespace

bool EngineRunner::run(int pin, ActionItem *action, PinType type, bool wholeTable)
{
    const CorvantaGraph *const graph = MainUI::editedGraph();
    if (graph == nullptr || action->getIdx() >= graph->actions.size()) {
        return false;
    }
    ActionRegistry registry;
    registry.loadAll();
    return run(*graph, registry, graph->actions[action->getIdx()].id, pin, type, wholeTable);
}

bool EngineRunner::run(const CorvantaGraph &graph, const ActionRegistry &registry, const QString &id, int pin,
                       PinType type, bool wholeTable)
{
    m_columns = {};
    m_rows.clear();
    CorvantaGraph::Pin source{id, pin};
    if (type == PinIn) {
        const auto link = std::find_if(graph.links.begin(), graph.links.end(), [&](const CorvantaGraph::Link &l) {
            return l.to.action == id && l.to.pin == pin;
        });
        if (link == graph.links.end()) {
            return false;
        }
        source = link->from;
    }
    CorvantaGraph part = upTo(graph, source.action);
    RunOptions options;
    options.listeners.push_back(
        {u"preview"_s, source, std::make_unique<Collector>(wholeTable ? -1 : kPreviewRows, &m_columns, &m_rows)});
    if (part.indexOf(source.action) < 0 || !part.validate(registry, {}).isEmpty()) {
        return false;
    }
    Run run(part, registry, std::move(options));
    run.start();
    run.wait();
    return !run.failed();
}
