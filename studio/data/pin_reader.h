// Reads the rows of one pin after the other for the data view, in the background, and keeps what
// was read until an action that the pin depends on changes.
//
// Only as many rows are read as are wanted: the run is then paused, so that more rows need no new
// run. It runs only the actions that the pin depends on, and none that writes files.
// Threads: the GUI thread.
#pragma once
#include "corvanta/edit/worker.h"
#include "studio/data/pin_feed.h"
#include "studio/data/preview_graph.h"

#include <QObject>
#include <QTimer>

#include <list>

namespace corvanta::studio {

class PinReader final : public QObject
{
    Q_OBJECT

public:
    /// `registry` must outlive the reader.
    explicit PinReader(const ActionRegistry &registry, QObject *parent = nullptr);
    ~PinReader() override;

    /// Show the rows of a pin of a graph; the graph is copied. Reads nothing if they are known, and
    /// has no effect if they are shown already.
    void show(const CorvantaGraph &graph, const CorvantaGraph::Pin &pin,
              EngineRunner::PinType type);
    /// Show nothing.
    void clear();
    /// Read more rows: nextRows() in total.
    void readMore();
    /// Read the rest of the table, for the summaries; its rows are not kept.
    void summarizeAll();
    /// Read the rows again, because a file may have changed.
    void reload();
    /// These files have changed: forget the rows that were read from them, and read those that are
    /// shown again.
    void filesChanged(const QStringList &files);
    /// End reading; what was read stays.
    void stop();

    const PinRows &rows() const { return m_current->rows; }
    bool isReading() const { return m_worker.isRunning() && !m_isPaused; }
    /// Whether the table may have more rows than are shown, and there is memory for them.
    bool hasMore() const;
    /// Whether the memory for rows is used up.
    bool isFull() const { return rows().bytes >= kMaxBytes; }
    /// The number of rows after readMore().
    qint64 nextRows() const;
    /// Why there are no rows, or not all; empty: no problem.
    const QString &problem() const { return m_current->problem; }
    /// The ids of writers that are not run, see PreviewGraph::skipped.
    const QStringList &skipped() const { return m_current->preview.skipped; }

    /// Rows that are read at first.
    static constexpr qint64 kFirstRows = 1000;
    /// For the rows of one pin, and of all pins.
    static constexpr qsizetype kMaxBytes = qsizetype(128) << 20;
    static constexpr qsizetype kMaxCacheBytes = qsizetype(256) << 20;

Q_SIGNALS:
    /// Another pin is shown, or the rows are read again.
    void replaced();
    /// There are more rows, or the state has changed.
    void changed();

private:
    /// What is known of a pin.
    struct Entry
    {
        PreviewGraph preview;
        QByteArray key; ///< see contentKeyOf()
        PinRows rows;
        QString problem;
    };
    using EntryPtr = std::shared_ptr<Entry>;

    void setCurrent(const EntryPtr &entry);
    void read(qint64 wanted, bool isForSummaries);
    void readEnded(const QString &problem);
    void collect();
    void trimCache();

    const ActionRegistry &m_registry;
    std::list<EntryPtr> m_cache;     // the last used one first; has the current one
    EntryPtr m_current;              // never null
    std::shared_ptr<PinFeed> m_feed; // of the current run; null: none
    bool m_isPaused = false;
    bool m_isForSummaries = false; // the run does not keep the rows that it reads
    QTimer m_poll;                 // takes what the feed has
    Worker m_worker;
};

} // namespace corvanta::studio
