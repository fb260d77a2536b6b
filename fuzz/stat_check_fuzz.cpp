// The header checks of statistical data sets: no input makes them fail otherwise than by a fault.
#include "codecs/stat/header_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace corvanta;
    if (size == 0) {
        return 0;
    }
    constexpr uint8_t kFormats = 5;
    MemorySource source(QByteArrayView(data + 1, static_cast<qsizetype>(size - 1)));
    const auto checked = stat::checkHeader(source, static_cast<stat::Format>(data[0] % kFormats));
    return checked || checked.fault().code != stat::Error::Unreadable ? 0 : -1;
}
