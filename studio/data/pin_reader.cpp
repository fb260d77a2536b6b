// A run is in one of three states: none (m_feed is null), reading (m_poll is active) and paused. A
// paused run has a waiting thread and open files, so that only the pin that is shown has one.
#include "studio/data/pin_reader.h"

#include "corvanta/log.h"
#include "corvanta/main_ui.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr int kPollMs = 40;

/// Keeps the first error with its reason, else the first warning.
class ProblemSink final : public LogSink
{
public:
    void add(const LogMessage &message) override
    {
        const std::lock_guard lock(m_mutex);
        const QString text = message.text.trimmed();
        const bool isReason = text.startsWith("Reason: "_L1);
        if (isReason && m_wantsReason) {
            m_text += u'\n' + text;
        }
        m_wantsReason = !isReason && message.level < m_level;
        if (m_wantsReason) {
            m_level = message.level;
            m_text = text;
        }
    }
    QString text() const
    {
        const std::lock_guard lock(m_mutex);
        return m_text;
    }

private:
    mutable std::mutex m_mutex;
    // Guarded by m_mutex.
    int m_level = MainUI::Info; // of the text; information is not kept
    QString m_text;
    bool m_wantsReason = false; // the last message was kept
};

/// Passes the rows of the pin to `feed`. Returns what the user should know, empty if nothing.
QString readPin(const PreviewGraph &preview, const ActionRegistry &registry, PinFeed &feed,
                const std::stop_token &stop)
{
    const QString pipe = unrepeatableInput(preview.graph, registry);
    if (!pipe.isEmpty()) {
        return PinReader::tr("'%1' is a pipe or a device: a run could not read its rows again.")
            .arg(pipe);
    }
    ProblemSink log;
    EngineRunner runner;
    const auto take = [&](const TableSchema &columns, const OneRow *row) {
        return feed.take(columns, row, stop);
    };
    const bool isGood = runner.run(preview.graph, registry, preview.source.action,
                                   preview.source.pin, EngineRunner::PinOut,
                                   {.mayWrite = false, .stop = stop, .log = &log, .onRow = take});
    feed.flush();
    const QString problem = log.text();
    return isGood || !problem.isEmpty() ? problem : PinReader::tr("The actions cannot be run.");
}

} // namespace

PinReader::PinReader(const ActionRegistry &registry, QObject *parent)
    : QObject(parent)
    , m_registry(registry)
    , m_current(std::make_shared<Entry>())
{
    m_poll.setInterval(kPollMs);
    connect(&m_poll, &QTimer::timeout, this, &PinReader::collect);
}

/// The thread of the run may exist a little longer; it uses nothing of this object.
PinReader::~PinReader()
{
    m_worker.stop();
}

/// A key is compared instead of the pin: edits that change nothing keep the rows, and undo finds
/// them.
void PinReader::show(const CorvantaGraph &graph, const CorvantaGraph::Pin &pin,
                     EngineRunner::PinType type)
{
    const std::optional<PreviewGraph> preview = previewGraphOf(graph, m_registry, pin, type);
    if (!preview) {
        clear();
        m_current->problem =
            tr("No rows reach this pin: it has no link, or its action is unknown.");
        Q_EMIT changed();
        return;
    }
    const QByteArray key = contentKeyOf(*preview);
    if (key == m_current->key) {
        return;
    }
    const auto known = std::find_if(m_cache.begin(), m_cache.end(),
                                    [&](const EntryPtr &entry) { return entry->key == key; });
    if (known != m_cache.end()) {
        m_cache.splice(m_cache.begin(), m_cache, known);
        setCurrent(m_cache.front());
        return;
    }
    m_cache.push_front(std::make_shared<Entry>(Entry{*preview, key, {}, {}}));
    setCurrent(m_cache.front());
    read(kFirstRows, false);
}

/// The rows stay in the cache.
void PinReader::clear()
{
    setCurrent(std::make_shared<Entry>());
}

/// The rows that the run of the entry before has passed stay in that entry.
void PinReader::setCurrent(const EntryPtr &entry)
{
    stop();
    m_current = entry;
    trimCache();
    Q_EMIT replaced();
}

void PinReader::stop()
{
    if (m_feed != nullptr) {
        collect();
    }
    m_worker.stop();
    m_poll.stop();
    m_feed = nullptr;
    m_isPaused = false;
    Q_EMIT changed();
}

qint64 PinReader::nextRows() const
{
    // So that few steps lead to many rows, and no step takes long.
    constexpr qint64 kMaxStep = 100'000;
    const qint64 shown = std::max(rows().rows, kFirstRows / 10);
    const qint64 next = std::min(10 * shown, shown + kMaxStep);
    return rows().isComplete ? std::min(next, rows().rowsRead) : next;
}

/// A table that was only counted to its end has rows that are not shown.
bool PinReader::hasMore() const
{
    const bool isAllShown = rows().isComplete && rows().rows == rows().rowsRead;
    return !m_current->key.isEmpty() && !isAllShown && !isFull();
}

/// Continues a paused run. After a run that ended, for example by another pin, the rows that are
/// there are skipped.
void PinReader::readMore()
{
    if (!hasMore() || isReading()) {
        return;
    }
    if (m_isPaused && !m_isForSummaries) {
        m_isPaused = false;
        m_feed->want(nextRows());
        m_poll.start();
        Q_EMIT changed();
    } else {
        read(nextRows(), false);
    }
}

/// Afterwards the run cannot give more rows, because it has passed them.
void PinReader::summarizeAll()
{
    if (m_current->key.isEmpty() || rows().isComplete || isReading()) {
        return;
    }
    if (m_isPaused) {
        m_isPaused = false;
        m_isForSummaries = true;
        m_feed->wantSummaries();
        m_poll.start();
        Q_EMIT changed();
    } else {
        read(rows().rows, true);
    }
}

/// The rows are removed before the run, so that old and new ones are never mixed.
void PinReader::reload()
{
    if (!m_current->key.isEmpty()) {
        m_current->rows = {};
        m_current->problem.clear();
        setCurrent(m_current);
        read(kFirstRows, false);
    }
}

/// A pin that is not shown is read when it is shown again.
void PinReader::filesChanged(const QStringList &files)
{
    m_cache.remove_if([&](const EntryPtr &entry) {
        return entry != m_current && readsFiles(entry->preview.graph, m_registry, files);
    });
    if (readsFiles(m_current->preview.graph, m_registry, files)) {
        reload();
    }
}

/// Starts a run that passes the rows after those that are there.
void PinReader::read(qint64 wanted, bool isForSummaries)
{
    stop();
    m_current->problem.clear();
    const PinRows &known = m_current->rows;
    m_feed = std::make_shared<PinFeed>(known.rows, wanted, kMaxBytes - known.bytes);
    m_isForSummaries = isForSummaries;
    if (isForSummaries) {
        m_feed->wantSummaries();
    }
    m_worker.start(
        [this, preview = m_current->preview, feed = m_feed,
         &registry = m_registry](const std::stop_token &stop) {
            const QString problem = readPin(preview, registry, *feed, stop);
            return [this, problem] { readEnded(problem); };
        },
        [this](const QString &reason) { readEnded(reason); });
    m_poll.start();
    Q_EMIT changed();
}

/// The rows before a failure are kept.
void PinReader::readEnded(const QString &problem)
{
    m_poll.stop();
    m_current->problem = problem;
    if (const std::shared_ptr<PinFeed> feed = std::exchange(m_feed, nullptr)) {
        feed->collect(&m_current->rows);
    }
    m_isPaused = false;
    trimCache();
    Q_EMIT changed();
}

/// Called by the timer; also by stop(), for what has arrived since.
void PinReader::collect()
{
    // In this order: what is passed before the pause must not be missed.
    const bool isPaused = m_feed->isPaused();
    const bool isNew = m_feed->collect(&m_current->rows);
    if (isPaused) {
        m_isPaused = true;
        m_poll.stop();
        trimCache();
    }
    if (isNew || isPaused) {
        Q_EMIT changed();
    }
}

/// Forgets the pins that were not shown for the longest time.
void PinReader::trimCache()
{
    constexpr size_t kMaxEntries = 64;
    qsizetype bytes = 0;
    size_t count = 0;
    m_cache.remove_if([&](const EntryPtr &entry) {
        bytes += entry->rows.bytes;
        return (bytes > kMaxCacheBytes || ++count > kMaxEntries) && entry != m_current;
    });
}

} // namespace corvanta::studio
