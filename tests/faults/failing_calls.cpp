// Preloaded into a program, makes one call for a file fail: number $FAIL_AT of those that concern
// files below the folder $FAIL_FOLDER, with the error number $FAIL_ERROR. $FAIL_COUNT names a file
// that gets the number of such calls when the program ends, and " lost" when that call may have
// lost what the program had written.
//
// Removing files never fails, because a program cannot undo what it is not allowed to remove.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kMaxFiles = 1024;
std::array<std::atomic<bool>, kMaxFiles> g_isOurs;    // by descriptor: a file below the folder
std::array<std::atomic<bool>, kMaxFiles> g_isWritten; // of these, those with a call of write()
std::atomic<long> g_count = 0;
std::atomic<bool> g_isLost = false;

const char *variable(const char *name)
{
    const char *const value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// The next function of this name: the one of the C library.
template <class F> F next(F, const char *name)
{
    return reinterpret_cast<F>(::dlsym(RTLD_NEXT, name));
}

/// Whether this call is the one that fails.
bool fails()
{
    static const long failAt = std::atol(variable("FAIL_AT"));
    static const int error = std::atoi(variable("FAIL_ERROR"));
    const bool isIt = ++g_count == failAt;
    errno = isIt ? error : errno;
    return isIt;
}

bool isOurs(const char *path)
{
    static const char *const folder = variable("FAIL_FOLDER");
    // Names that are relative are too: the program runs in the folder.
    return path[0] != '/' || std::strncmp(path, folder, std::strlen(folder)) == 0;
}

bool isOurs(int file)
{
    return file >= 0 && file < kMaxFiles && g_isOurs[static_cast<size_t>(file)];
}

/// Remember the new descriptor `file`.
int opened(int file, bool ours)
{
    if (file >= 0 && file < kMaxFiles) {
        g_isOurs[static_cast<size_t>(file)] = ours;
        g_isWritten[static_cast<size_t>(file)] = false;
    }
    return file;
}

struct WritesCount
{
    ~WritesCount()
    {
        if (std::FILE *const file = std::fopen(variable("FAIL_COUNT"), "w")) {
            std::fprintf(file, "%ld%s", g_count.load(), g_isLost ? " lost" : "");
            std::fclose(file);
        }
    }
} g_writesCount;

} // namespace

// NOLINTBEGIN: the names and arguments are those of the C library
#define OPEN(name)                                                                                 \
    int name(const char *path, int flags, ...)                                                     \
    {                                                                                              \
        std::va_list rest;                                                                         \
        va_start(rest, flags);                                                                     \
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;                     \
        va_end(rest);                                                                              \
        static const auto real = next(&name, #name);                                               \
        const bool ours = isOurs(path);                                                            \
        return ours && fails() ? -1 : opened(real(path, flags, mode), ours);                       \
    }

// A call with a descriptor.
#define CALL(type, name, parameters, arguments)                                                    \
    type name parameters                                                                           \
    {                                                                                              \
        static const auto real = next(&name, #name);                                               \
        return isOurs(file) && fails() ? -1 : real arguments;                                      \
    }

extern "C" {

OPEN(open)
OPEN(open64)
CALL(ssize_t, read, (int file, void *buffer, size_t n), (file, buffer, n))
CALL(int, ftruncate, (int file, off_t size), (file, size))
CALL(int, ftruncate64, (int file, off64_t size), (file, size))
CALL(int, fsync, (int file), (file))

ssize_t write(int file, const void *bytes, size_t n)
{
    static const auto real = next(&write, "write");
    const bool ours = isOurs(file);
    if (ours) {
        g_isWritten[static_cast<size_t>(file)] = true;
    }
    return ours && fails() ? -1 : real(file, bytes, n);
}

int close(int file)
{
    static const auto real = next(&close, "close");
    const bool ours = isOurs(file);
    const bool isWritten = ours && g_isWritten[static_cast<size_t>(file)];
    opened(file, false);
    // The descriptor is closed in any case, as by the system.
    const int result = real(file);
    if (!ours || !fails()) {
        return result;
    }
    g_isLost = isWritten;
    return -1;
}

int rename(const char *from, const char *to) noexcept
{
    static const auto real = next(&rename, "rename");
    return isOurs(from) && fails() ? -1 : real(from, to);
}

} // extern "C"
// NOLINTEND
