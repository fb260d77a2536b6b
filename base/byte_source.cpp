// The functions that work with every source.
#include "base/byte_source.h"

#include <vector>

namespace corvanta {

bool skipBytes(ByteSource &source, qint64 n)
{
    constexpr qint64 kScratchBytes = qint64(64) * 1024;
    std::vector<char> scratch(kScratchBytes);
    while (n > 0) {
        const qint64 got = source.read(scratch.data(), std::min(n, kScratchBytes));
        if (got <= 0) { // the end is a failure here: callers skip what a header promises
            return false;
        }
        n -= got;
    }
    return true;
}

} // namespace corvanta
