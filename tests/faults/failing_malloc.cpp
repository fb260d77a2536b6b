// Preloaded into a program, makes one allocation fail: the one of number $FAIL_AT, counted from the
// call of main(). With FAIL_LASTING all later ones fail too. $FAIL_COUNT names a file that gets the
// number of allocations when the program ends. Thread number $FAIL_THREAD cannot be started.
//
// glibc's own names of the allocator are called, because dlsym() allocates.
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

extern "C" {

void *__libc_malloc(size_t n);
void *__libc_calloc(size_t n, size_t size);
void *__libc_realloc(void *old, size_t n);
void *__libc_memalign(size_t alignment, size_t n);

} // extern "C"

namespace {

std::atomic<bool> g_counts = false; // main() has been called
std::atomic<long> g_count = 0;
long g_failAt = 0; // 0: none fails
std::atomic<long> g_threads = 0;
long g_failThread = 0; // 0: none fails
bool g_isLasting = false;

bool fails()
{
    if (!g_counts) {
        return false;
    }
    const long number = ++g_count;
    const bool isIt = number == g_failAt || (g_isLasting && g_failAt > 0 && number > g_failAt);
    errno = isIt ? ENOMEM : errno;
    return isIt;
}

void writeCount()
{
    g_counts = false;
    char text[32];
    const int n = std::snprintf(text, sizeof text, "%ld", g_count.load());
    const int file = ::open(std::getenv("FAIL_COUNT"), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (::write(file, text, static_cast<size_t>(n)) != n) {
        std::abort();
    }
    ::close(file);
}

using Main = int (*)(int, char **, char **);
Main g_main = nullptr;

int countingMain(int argc, char **argv, char **environment)
{
    if (const char *const number = std::getenv("FAIL_AT")) {
        g_failAt = std::atol(number);
    }
    if (const char *const number = std::getenv("FAIL_THREAD")) {
        g_failThread = std::atol(number);
    }
    g_isLasting = std::getenv("FAIL_LASTING") != nullptr;
    if (std::getenv("FAIL_COUNT") != nullptr) {
        std::atexit(writeCount);
    }
    g_counts = true;
    return g_main(argc, argv, environment);
}

} // namespace

extern "C" {

void *malloc(size_t n)
{
    return fails() ? nullptr : __libc_malloc(n);
}

void *calloc(size_t n, size_t size)
{
    return fails() ? nullptr : __libc_calloc(n, size);
}

void *realloc(void *old, size_t n)
{
    return fails() ? nullptr : __libc_realloc(old, n);
}

void *aligned_alloc(size_t alignment, size_t n)
{
    return fails() ? nullptr : __libc_memalign(alignment, n);
}

int posix_memalign(void **at, size_t alignment, size_t n)
{
    *at = fails() ? nullptr : __libc_memalign(alignment, n);
    return *at == nullptr ? ENOMEM : 0;
}

int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*function)(void *),
                   void *argument)
{
    if (++g_threads == g_failThread) {
        return EAGAIN;
    }
    using Create = decltype(&pthread_create);
    static const auto create = reinterpret_cast<Create>(::dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, function, argument);
}

int __libc_start_main(Main program, int argc, char **argv, void (*init)(), void (*fini)(),
                      void (*atEnd)(), void *stackEnd)
{
    using Start = int (*)(Main, int, char **, void (*)(), void (*)(), void (*)(), void *);
    g_main = program;
    const auto start = reinterpret_cast<Start>(::dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(countingMain, argc, argv, init, fini, atEnd, stackEnd);
}

} // extern "C"
