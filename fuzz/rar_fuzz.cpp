// Any bytes as the headers of a RAR archive: sizes and offsets are valid, and the first name is
// that of the first entry.
#include "codecs/rar/rar_entry.h"

#include <cstdlib>

using namespace corvanta;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    MemorySource source(QByteArrayView(data, static_cast<qsizetype>(size)), 5);
    const auto entry = rar::readFirstEntry(source);
    if (entry &&
        (entry->size < 0 || entry->packedSize < 0 || entry->dataAt > static_cast<qint64>(size))) {
        std::abort();
    }
    const auto names = rar::entryNames(source);
    if (bool(names) != bool(entry) || (names && names->value(0) != entry->name)) {
        std::abort();
    }
    return 0;
}
