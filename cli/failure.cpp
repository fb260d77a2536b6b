// Writes to the stream of the log, but not through the log, which needs memory for each message.
#include "failure.h"

#include "command_line.h"

#include <cstdlib>
#include <exception>
#include <new>

namespace {

std::FILE *g_stream = stderr;
bool g_isJson = false;

} // namespace

void setFailureStream(std::FILE *stream, bool isJson)
{
    g_stream = stream;
    g_isJson = isJson;
}

void reportFailure(const char *why) noexcept
{
    std::fputs(g_isJson
                   ? "{\"level\":1,\"severity\":\"error\",\"action\":\"\",\"message\":\"Error: "
                   : "Error: ",
               g_stream);
    for (; *why != '\0'; ++why) {
        // Also right for text: a message has one line.
        std::fputc(*why == '"' || *why == '\\' || *why < ' ' ? '\'' : *why, g_stream);
    }
    std::fputs(g_isJson ? "\"}\n" : "\n", g_stream);
    std::fflush(g_stream);
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
