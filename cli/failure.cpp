// Writes to the stream of the log, but not through the log, which needs memory for each message.
#include "failure.h"

#include "command_line.h"

#include <cstdlib>
#include <exception>
#include <new>

namespace {

std::FILE *logStream = stderr;
bool isLogJson = false;

} // namespace

void setFailureStream(std::FILE *stream, bool isJson)
{
    logStream = stream;
    isLogJson = isJson;
}

void reportFailure(const char *why) noexcept
{
    std::fputs(isLogJson
                   ? "{\"level\":1,\"severity\":\"error\",\"action\":\"\",\"message\":\"Error: "
                   : "Error: ",
               logStream);
    for (; *why != '\0'; ++why) {
        // Also right for text: a message has one line.
        std::fputc(*why == '"' || *why == '\\' || *why < ' ' ? '\'' : *why, logStream);
    }
    std::fputs(isLogJson ? "\"}\n" : "\n", logStream);
    std::fflush(logStream);
}

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

void reportUncaughtExceptions()
{
    std::set_terminate([] {
        std::current_exception() ? reportException() : reportFailure("unknown failure");
        std::_Exit(kFailed);
    });
}
