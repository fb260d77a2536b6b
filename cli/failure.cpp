// Writes to the stream of the log, but not through the log, which needs memory for each message.
#include "failure.h"

#include "command_line.h"

#include <cstdlib>
#include <exception>
#include <new>

namespace {

std::FILE *logStream = stderr;
bool isLogJson = false;

// The members before the text, as the log writes them for a message without an action.
constexpr const char *kJsonHead =
    "{\"level\":1,\"severity\":\"error\",\"action\":\"\",\"message\":\"Error: ";

/// Writes a text that needs no escapes: what JSON cannot hold becomes an apostrophe.
void putText(const char *text) noexcept
{
    for (; *text != '\0'; ++text) {
        // Also right for text: a message has one line.
        std::fputc(*text == '"' || *text == '\\' || *text < ' ' ? '\'' : *text, logStream);
    }
}

} // namespace

void setFailureStream(std::FILE *stream, bool isJson)
{
    logStream = stream;
    isLogJson = isJson;
}

void reportFailure(const char *why) noexcept
{
    std::fputs(isLogJson ? kJsonHead : "Error: ", logStream);
    putText(why);
    std::fputs(isLogJson ? "\"}\n" : "\n", logStream);
    std::fflush(logStream);
}

/// Call in a handler: the exception is the one that is being handled.
void reportException() noexcept
{
    try {
        throw;
    } catch (const std::bad_alloc &) {
        reportFailure("not enough memory");
    } catch (const std::exception &error) {
        reportFailure(error.what());
    } catch (...) {
        reportFailure("unknown failure");
    }
}

/// For exceptions of other threads, which no handler of main() can catch.
void reportUncaughtExceptions()
{
    std::set_terminate([] {
        std::current_exception() ? reportException() : reportFailure("unknown failure");
        std::_Exit(kFailed);
    });
}
