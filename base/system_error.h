// Why the system refused a call: the number of the error, from the call up to the message.
#pragma once
#include <QString>

#include <cerrno>

namespace corvanta {

/// An error number of the system (errno). Plain data: it is kept where a call failed, and the
/// action words it (corvanta/failure_reason.h).
struct SystemError
{
    int number = 0; ///< 0: no error

    /// Why the last call of this thread failed. Only directly after the call that reported a
    /// failure: every other call may change it.
    static SystemError ofLastCall() { return {errno}; }

    /// False without an error.
    explicit operator bool() const { return number != 0; }
    /// The system's own text, in the language of the user. Empty without an error.
    QString text() const { return number != 0 ? qt_error_string(number) : QString(); }
};

} // namespace corvanta
