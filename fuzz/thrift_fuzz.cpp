// Any bytes as Parquet records: a record that reads is written to bytes that read back equal.
#include "codecs/parquet/metadata/records.h"

#include <cstdlib>

using namespace corvanta::parquet;

template <class Record> static void check(std::span<const uchar> bytes)
{
    CompactReader in(bytes);
    Record record;
    const auto consumed = readRecord(in, record);
    if (!consumed) {
        return;
    }
    if (*consumed > static_cast<qint64>(bytes.size())) {
        std::abort();
    }
    CompactWriter first;
    CompactWriter second;
    Record back;
    const auto written = writeRecord(first, record);
    CompactReader again({reinterpret_cast<const uchar *>(first.bytes().constData()),
                         static_cast<size_t>(first.bytes().size())});
    if (!written || *readRecord(again, back) != *written ||
        *writeRecord(second, back) != *written || first.bytes() != second.bytes()) {
        std::abort();
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    check<FileMetaData>({data, size});
    check<PageHeader>({data, size});
    return 0;
}
