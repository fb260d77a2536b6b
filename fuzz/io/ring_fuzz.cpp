// The input is a schedule: the sizes of blocks and reads, and where the consumer stops.
#include "fuzz/support/require.h"
#include "io/input/rar_ring.h"

#include <thread>

using namespace corvanta::input;

/// Put blocks of the sizes in `schedule`, each byte the low byte of its position.
static void produce(RarRing &ring, std::span<const uint8_t> schedule)
{
    unsigned next = 0;
    for (const uint8_t step : schedule) {
        std::vector<char> block(static_cast<size_t>(step) * 3);
        for (char &byte : block) {
            byte = static_cast<char>(next++ % 256);
        }
        if (!ring.put(block)) {
            return;
        }
    }
    ring.finish({});
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 4) {
        return 0;
    }
    const size_t ringBytes = data[0] + 2U;
    RarRing ring(ringBytes, data[1] % (ringBytes - 1));
    const size_t stopAfter = data[2] < 128 ? SIZE_MAX : data[2] - 128U;
    const std::span<const uint8_t> schedule(data + 3, size - 3);
    std::thread producer([&] { produce(ring, schedule); });
    size_t total = 0;
    for (const uint8_t step : schedule) {
        total += static_cast<size_t>(step) * 3;
    }
    std::vector<char> out(256 + 1);
    unsigned expected = 0;
    size_t done = 0;
    for (size_t read = 0; read < stopAfter; ++read) {
        const qint64 want = schedule[read % schedule.size()] + 1;
        const qint64 got = ring.take(out.data(), want);
        for (qint64 i = 0; i < got; ++i) {
            require(static_cast<uint8_t>(out[static_cast<size_t>(i)]) == expected++ % 256);
        }
        done += static_cast<size_t>(got);
        require(got == want || done == total);
        if (got == 0) {
            break;
        }
    }
    require(stopAfter != SIZE_MAX || done == total);
    ring.abort();
    producer.join();
    return 0;
}
