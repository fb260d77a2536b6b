// The scope of each thread.
#include "base/platform/stop_scope.h"

#include <utility>

namespace corvanta::platform {

namespace {

/// Per thread, so that files need no argument for the run that reads or writes them.
const StopScope *&threadScope()
{
    thread_local const StopScope *scope = nullptr;
    return scope;
}

} // namespace

StopScope::StopScope(std::function<bool()> isStopped)
    : m_isStopped(std::move(isStopped))
    , m_previous(threadScope())
{
    threadScope() = this;
}

StopScope::~StopScope()
{
    threadScope() = m_previous;
}

bool StopScope::isStopped()
{
    const StopScope *const scope = threadScope();
    return scope != nullptr && scope->m_isStopped();
}

} // namespace corvanta::platform
