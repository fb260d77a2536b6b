// The log context of each thread.
#include "corvanta/log.h"

namespace {

/// Per thread, so that addLog() needs no argument for the action and no lock.
LogScope::Context &threadContext()
{
    thread_local LogScope::Context context;
    return context;
}

} // namespace

LogScope::LogScope(const Context &context)
    : m_previous(threadContext())
{
    threadContext() = context;
}

LogScope::~LogScope()
{
    threadContext() = m_previous;
}

LogScope::Context LogScope::current()
{
    return threadContext();
}
