// Preloaded into a program, makes one allocation fail: the one of number $FAIL_AT, counted from the
// start of the first thread, because before it libraries fail whose containers do not check what
// they allocate. $FAIL_COUNT names a file that gets the number of allocations when the program
// ends. Thread number $FAIL_THREAD cannot be started.
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

std::atomic<bool> g_counts = false; // the first thread is started
std::atomic<long> g_count = 0;
long g_failAt = 0; // 0: none fails
std::atomic<long> g_threads = 0;
long g_failThread = 0; // 0: none fails

bool fails()
{
    if (!g_counts) {
        return false;
    }
    const long number = ++g_count;
    errno = number == g_failAt ? ENOMEM : errno;
    return number == g_failAt;
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

long numberOf(const char *variable)
{
    const char *const text = std::getenv(variable);
    return text != nullptr ? std::atol(text) : 0;
}

void startCounting()
{
    g_failAt = numberOf("FAIL_AT");
    g_failThread = numberOf("FAIL_THREAD");
    if (std::getenv("FAIL_COUNT") != nullptr) {
        std::atexit(writeCount);
    }
    g_counts = true;
}

} // namespace

#pragma GCC visibility push(default)

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
    if (!g_counts) {
        startCounting();
    }
    if (++g_threads == g_failThread) {
        return EAGAIN;
    }
    using Create = decltype(&pthread_create);
    static const auto create = reinterpret_cast<Create>(::dlsym(RTLD_NEXT, "pthread_create"));
    return create(thread, attributes, function, argument);
}

} // extern "C"

#pragma GCC visibility pop
