// The header checks of statistical data sets: no input makes them fail otherwise than by a fault.
#include "codecs/stat/check/header_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace corvanta;
    using namespace corvanta::stat;
    if (size == 0) {
        return 0;
    }
    constexpr uint8_t kFormats = 5; // and a catalogue
    MemorySource source(QByteArrayView(data + 1, static_cast<qsizetype>(size - 1)));
    formatOfContent(source);
    isCatalogue(source);
    const uint8_t kind = data[0] % (kFormats + 1);
    const auto checked =
        kind == kFormats ? checkCatalogue(source) : checkHeader(source, static_cast<Format>(kind));
    if (checked) {
        deletedSasRows(source);
        hasLongUtf8Texts(source);
        lacksStataEnd(source);
    }
    return checked || checked.fault().code != Error::Unreadable ? 0 : -1;
}
