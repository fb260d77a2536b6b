// Any bytes as a .gz file: the result does not depend on the sizes of reads.
#include "codecs/gzip/gzip_reader.h"
#include "fuzz/support/stream_property.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    corvanta::checkStream<corvanta::gzip::Reader>({data, static_cast<qsizetype>(size)}, true);
    return 0;
}
