// Any bytes as a .gz file and as a .Z file: the result does not depend on the sizes of reads.
#include "codecs/gzip/gzip_reader.h"
#include "codecs/lzw/lzw_reader.h"
#include "fuzz/support/stream_property.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    corvanta::checkStream<corvanta::gzip::Reader>(bytes, true);
    corvanta::checkStream<corvanta::lzw::Reader>(bytes, false);
    return 0;
}
