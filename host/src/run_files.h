// What a run knows about the files that its actions write.
#pragma once
#include "corvanta/target_file.h"
#include "engine/target_order.h"
#include "unsynced_names.h"

#include <QString>

#include <map>
#include <mutex>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace corvanta {

/// One per run. Threads: any, after setOrder().
class RunFiles
{
public:
    /// Makes the files of a run known to the calling thread, as long as the scope exists. Destroy
    /// it on the thread that created it.
    class Scope
    {
    public:
        explicit Scope(RunFiles &files);
        ~Scope();
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        RunFiles *m_previous;
    };
    /// Those of the run for which the calling thread works; null outside a run.
    static RunFiles *ofThread();

    /// The actions that share a file with others, in an order.
    void setOrder(const TargetOrder &order) { m_shared = order.shared; }
    /// Called when the action with this index opens a target. Two actions that were not expected to
    /// write one file, because its name depends on the rows, would damage it: false for the second
    /// one, after logging an error.
    bool claim(const QString &file, int action);
    // As addWrittenRows() and takeWrittenRows().
    void addRows(const QString &file, const QString &table, WrittenRows rows);
    std::vector<WrittenRows> takeRows(const QString &file, const QString &table, qint64 first);
    /// Files that are to be flushed before the run ends.
    UnsyncedNames &unsynced() { return m_unsynced; }

private:
    /// The action that opened a target first.
    struct Owner
    {
        int action = 0;
        QString id;
    };
    UnsyncedNames m_unsynced;
    std::set<std::pair<int, int>> m_shared;      // see TargetOrder
    std::mutex m_mutex;                          // guards the members below
    std::unordered_map<QString, Owner> m_owners; // by the final name of the file
    // By that name and the table.
    std::map<std::pair<QString, QString>, std::vector<WrittenRows>> m_rows;
};

} // namespace corvanta
