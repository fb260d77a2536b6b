// Any bytes as a .Z file: the result does not depend on the sizes of reads.
#include "codecs/lzw/lzw_reader.h"
#include "fuzz/support/stream_property.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    corvanta::checkStream<corvanta::lzw::Reader>({data, static_cast<qsizetype>(size)}, false);
    return 0;
}
