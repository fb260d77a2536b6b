// The log context of each thread.
#include "corvanta/log.h"

namespace {

/// Per thread, so that addLog() needs no argument for the action and no lock. A pointer, because a
/// thread could not register a destructor without memory. Null outside all scopes.
const LogScope *&threadScope()
{
    thread_local const LogScope *scope = nullptr;
    return scope;
}

} // namespace

LogScope::LogScope(const Context &context)
    : m_context(context)
    , m_previous(threadScope())
{
    threadScope() = this;
}

LogScope::~LogScope()
{
    threadScope() = m_previous;
}

LogScope::Context LogScope::current()
{
    const LogScope *const scope = threadScope();
    return scope != nullptr ? scope->m_context : Context();
}
