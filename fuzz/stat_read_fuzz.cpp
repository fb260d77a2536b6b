// The whole reader of statistical data sets, the library included, in a child process with limits:
// the library is not ours, and a fault of it must not end the search.
//
// Byte 0: the format (0 to 4) plus 8: with value labels, plus 16: dates as text. The data set
// follows. The child must end by itself, within its time and memory.
#include "codecs/stat/check/header_check.h"
#include "codecs/stat/data_set_reader.h"
#include "codecs/stat/label_reader.h"
#include "codecs/stat/transport_member.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <thread>

using namespace corvanta;
using namespace corvanta::stat;

/// Only in a program that counts the lines it runs.
extern "C" __attribute__((weak)) int __llvm_profile_write_file(void);

namespace {

constexpr rlim_t kSeconds = 5;
constexpr rlim_t kMemoryBytes = rlim_t(1) << 30;

/// Read all rows, as the action does.
void readAll(QByteArrayView file, uint8_t flags)
{
    constexpr uint8_t kFormats = 5;
    constexpr qint64 kRingBytes = 64 * 1024;
    ReadOptions options;
    options.format = static_cast<Format>((flags & 7) % kFormats);
    options.extractLabels = (flags & 8) != 0;
    options.formatDates = (flags & 16) != 0;
    MemorySource source(file);
    if (!checkHeader(source, options.format)) {
        return;
    }
    LabelSets labels;
    if (options.extractLabels) {
        if (auto read = readLabelSets(source, options.format, options.encoding)) {
            labels = *std::move(read);
        }
    }
    RowRing ring(kRingBytes);
    std::optional<TransportMember> member;
    if (options.format == Format::SasTransport) {
        member.emplace(source, readTransportLayout(source)->rowsAt); // the check has read it, too
    }
    ByteSource &rows = member ? static_cast<ByteSource &>(*member) : source;
    DataSetReader reader(rows, options, std::move(labels));
    std::thread parser([&] {
        static_cast<void>(!reader.read(ring, [](const Dictionary &) {}));
        ring.finish();
    });
    while (ring.next() != nullptr) {
    }
    parser.join();
}

/// The private memory of this process, which the limit counts as well: a sanitizer reserves much.
rlim_t dataBytes()
{
    constexpr rlim_t kPageBytes = 4096;
    std::ifstream facts("/proc/self/statm");
    rlim_t pages = 0;
    for (int i = 0; i < 6; ++i) { // the sixth number: data and stack
        facts >> pages;
    }
    return pages * kPageBytes;
}

void limit(int resource, rlim_t most)
{
    const rlimit limits{most, most};
    setrlimit(static_cast<__rlimit_resource>(resource), &limits);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2) {
        return 0;
    }
    // The counts of a child would be lost.
    if (__llvm_profile_write_file != nullptr) {
        readAll(QByteArrayView(data + 1, static_cast<qsizetype>(size - 1)), data[0]);
        return 0;
    }
    const pid_t child = fork();
    if (child == 0) {
        limit(RLIMIT_CPU, kSeconds);
        limit(RLIMIT_DATA, dataBytes() + kMemoryBytes);
        limit(RLIMIT_CORE, 0);
        readAll(QByteArrayView(data + 1, static_cast<qsizetype>(size - 1)), data[0]);
        _exit(0);
    }
    int status = 0;
    pid_t ended = 0;
    do { // the timer of the fuzzer interrupts the call
        ended = waitpid(child, &status, 0);
    } while (ended < 0 && errno == EINTR);
    if (child < 0 || ended != child || status != 0) {
        std::abort();
    }
    return 0;
}
