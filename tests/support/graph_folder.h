// Runs graphs in a temporary folder, within the test's process.
#pragma once
#include "corvanta/action_registry.h"
#include "corvanta/main_ui.h"
#include "corvanta/run.h"

#include <QByteArray>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace corvanta::test {

/// The registry with the module and the host's own actions, loaded once per process.
const ActionRegistry &allActions();

struct GraphSettings
{
    int batchRows = 1024;
    bool yields = false;       ///< ask the actions for a yield at every batch
    qint64 stopAfterRows = -1; ///< stop the run once so many rows were seen; negative: never
    /// Stop the run so long after its start.
    std::optional<std::chrono::microseconds> stopAfter = {};
    const ActionRegistry *registry = nullptr;    ///< null: allActions()
    std::function<void(Run &)> beforeStart = {}; ///< for tests that stop the run themselves
};

/// The result of a run.
struct GraphOutcome
{
    bool ended = false; ///< false after kMaxSeconds
    bool succeeded = false;
    bool failed = false;       ///< both are false after a stop
    QStringList errors;        ///< messages of level 1
    QStringList messages;      ///< all messages, each with the digit of its level before it
    QVector<QStringList> rows; ///< of the observed pin; null strings are missing cells
};

/// A temporary folder with the inputs and targets of a graph. Threads: one at a time.
class GraphFolder
{
public:
    static constexpr int kMaxSeconds = 30;

    QString path(const QString &name) const { return m_dir.filePath(name); }
    /// The names of all files, sorted.
    QStringList files() const;
    QByteArray bytes(const QString &name) const;
    void write(const QString &name, const QByteArray &bytes) const;
    void remove(const QString &name) const;

    /// Run a chain: each element (`<readCSV .../>`) is linked to the next one. Observes output pin
    /// 0 of the last one.
    GraphOutcome runChain(const QList<QByteArray> &elements,
                          const GraphSettings &settings = {}) const;

private:
    QTemporaryDir m_dir;
};

/// Makes each write beyond `bytes` of a file fail, in this process, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    quint64 m_previous = 0;
};

} // namespace corvanta::test
