#include "run_files.h"

#include "base/platform/files.h"
#include "corvanta/main_ui.h"

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

bool RunFiles::claim(const QString &file, int action)
{
    const QString name = platform::finalName(file).value_or(file);
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
