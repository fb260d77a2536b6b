#include "tests/support/graph_folder.h"

#include "corvanta/corvanta_graph.h"
#include "corvanta/one_row.h"
#include "corvanta/row_listener.h"
#include "corvanta/run.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta::test {
namespace {

struct CollectingLog final : LogSink
{
    void add(const LogMessage &message) override
    {
        const std::lock_guard lock(mutex);
        messages << QString::number(message.level) + message.text;
        if (message.level == MainUI::Error) {
            errors << message.text;
        }
    }
    std::mutex mutex;
    QStringList errors;
    QStringList messages;
};

QByteArray chainOf(const QList<QByteArray> &elements)
{
    QByteArray graph = "<graph version='4.11'>";
    for (qsizetype i = 0; i < elements.size(); ++i) {
        graph += "<action id='a" + QByteArray::number(i) + "'>" + elements[i] + "</action>";
    }
    for (qsizetype i = 1; i < elements.size(); ++i) {
        graph += "<link from='a" + QByteArray::number(i - 1) + ":0' to='a" + QByteArray::number(i) +
                 ":0'/>";
    }
    return graph + "</graph>";
}

QStringList textsOf(const OneRow &row)
{
    QStringList texts;
    for (int i = 0; i < row.numberOfColumns(); ++i) {
        texts << row.text(i);
    }
    return texts;
}

/// Output pin 0 of the last action that has one.
CorvantaGraph::Pin observedPin(const CorvantaGraph &graph, const ActionRegistry &registry)
{
    const auto hasOutput = [&](const CorvantaGraph::Action &action) {
        return registry.prototype(action.parameters.getName())->pinOutCount() > 0;
    };
    const auto last = std::find_if(graph.actions.rbegin(), graph.actions.rend(), hasOutput);
    return {last->id, 0};
}

} // namespace

const ActionRegistry &allActions()
{
    static const auto registry = [] {
        auto loaded = std::make_unique<ActionRegistry>();
        loaded->loadAll();
        return loaded;
    }();
    return *registry;
}

QStringList GraphFolder::files() const
{
    return QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

QByteArray GraphFolder::bytes(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void GraphFolder::write(const QString &name, const QByteArray &bytes) const
{
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

void GraphFolder::remove(const QString &name) const
{
    QFile::remove(path(name));
}

GraphOutcome GraphFolder::runChain(const QList<QByteArray> &elements,
                                   const GraphSettings &settings) const
{
    GraphOutcome outcome;
    const ActionRegistry &registry = settings.registry ? *settings.registry : allActions();
    const auto graph = CorvantaGraph::parse(chainOf(elements), path(u"sweep.graph"_s));
    if (!graph || !graph->validate(registry, {}).isEmpty()) {
        ADD_FAILURE() << "invalid graph: " << chainOf(elements).toStdString();
        return outcome;
    }
    CollectingLog log;
    Run *running = nullptr;
    const auto observe = [&](const TableSchema &, const OneRow *row) {
        if (outcome.rows.size() == settings.stopAfterRows) {
            running->stop();
        }
        if (row != nullptr) {
            outcome.rows << textsOf(*row);
        }
        return true;
    };
    RunOptions options;
    options.log = &log;
    options.batchRows = settings.batchRows;
    options.yieldAtBatches = settings.yields;
    options.listeners.push_back(
        {u"observer"_s, observedPin(*graph, registry), std::make_unique<RowListener>(observe), -1});
    Run run(*graph, registry, std::move(options));
    running = &run;
    if (settings.beforeStart) {
        settings.beforeStart(run);
    }
    run.start();
    if (settings.stopAfter) {
        std::this_thread::sleep_for(*settings.stopAfter);
        run.stop();
    }
    outcome.ended = run.waitFor(std::chrono::seconds(kMaxSeconds));
    run.wait();
    outcome.succeeded = run.succeeded();
    outcome.failed = run.failed();
    outcome.errors = log.errors;
    outcome.messages = log.messages;
    return outcome;
}

FileSizeLimit::FileSizeLimit(qint64 bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    m_previous = limit.rlim_cur;
    limit.rlim_cur = static_cast<rlim_t>(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = m_previous;
    setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace corvanta::test
