#include "run_files.h"

#include "base/platform/files.h"
#include "corvanta/main_ui.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Per thread, because the contract's functions for files have no argument for the run.
RunFiles *&filesOfThread()
{
    thread_local RunFiles *files = nullptr;
    return files;
}

QString finalName(const QString &file)
{
    return platform::finalName(file).value_or(file);
}

} // namespace

RunFiles::Scope::Scope(RunFiles &files)
    : m_previous(std::exchange(filesOfThread(), &files))
{
}

RunFiles::Scope::~Scope()
{
    filesOfThread() = m_previous;
}

RunFiles *RunFiles::ofThread()
{
    return filesOfThread();
}

void RunFiles::addRows(const QString &file, const QString &table, WrittenRows rows)
{
    const std::scoped_lock lock(m_mutex);
    m_rows[{finalName(file), table}].push_back(std::move(rows));
}

std::vector<WrittenRows> RunFiles::takeRows(const QString &file, const QString &table, qint64 first)
{
    const std::scoped_lock lock(m_mutex);
    std::vector<WrittenRows> &written = m_rows[{finalName(file), table}];
    std::vector<WrittenRows> kept;
    std::vector<WrittenRows> taken;
    for (const WrittenRows &rows : written) {
        if (rows.first < first) {
            kept.push_back({rows.action, rows.first, std::min(rows.last, first - 1)});
        }
        if (rows.last >= first) {
            taken.push_back({rows.action, std::max(rows.first, first), rows.last});
        }
    }
    written = std::move(kept);
    return taken;
}

void addWrittenRows(const QString &file, const QString &table, qint64 first, qint64 last)
{
    if (RunFiles *const files = RunFiles::ofThread()) {
        files->addRows(file, table, {LogScope::current().action, first, last});
    }
}

std::vector<WrittenRows> takeWrittenRows(const QString &file, const QString &table, qint64 first)
{
    RunFiles *const files = RunFiles::ofThread();
    return files != nullptr ? files->takeRows(file, table, first) : std::vector<WrittenRows>();
}

bool RunFiles::claim(const QString &file, int action)
{
    const QString name = finalName(file);
    const QString id = LogScope::current().action;
    std::unique_lock lock(m_mutex);
    Owner &owner = m_owners.try_emplace(name, Owner{action, id}).first->second;
    if (owner.action == action || m_shared.contains(std::minmax(owner.action, action))) {
        owner = {action, id};
        return true;
    }
    const QString other = owner.id;
    lock.unlock();
    MainUI::addLog(
        MainUI::Error,
        u"Error: the actions '%1' and '%2' write the same file '%3'\n"_s.arg(other, id, file));
    return false;
}

} // namespace corvanta
