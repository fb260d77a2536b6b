// Any bytes as a Parquet file; the first byte chooses the options. The rows do not
// depend on how the bytes arrive, and on threads that decode ahead.
#include "codecs/parquet/read/table_reader.h"

#include <cstdlib>

using namespace corvanta;
using namespace corvanta::parquet;

static quint64 rowsOf(QByteArrayView bytes, const ReadOptions &options, qint64 pieceBytes,
                      int workers)
{
    constexpr qint64 kMaxRows = 20000;
    MemorySource source(bytes, pieceBytes);
    const auto reader = TableReader::open(source, options, workers);
    if (!reader || !(*reader)->prepare()) {
        return 0;
    }
    const std::vector<Column> &columns = (*reader)->columns();
    std::vector<const uchar *> cells(columns.size());
    quint64 sum = 1;
    while ((*reader)->rowsRead() < kMaxRows) {
        const auto more = (*reader)->next(cells.data());
        if (!more || !*more) {
            return sum + (more ? 0 : 1);
        }
        for (size_t i = 0; i < cells.size(); ++i) {
            const qsizetype n = cell::bytesOf(cellTypeOf(columns[i].form), cells[i]);
            for (qsizetype byte = 0; byte < n; ++byte) {
                sum = sum * 31 + cells[i][byte];
            }
        }
    }
    return sum;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    ReadOptions options;
    options.int64ToKey = (data[0] & 1) != 0;
    options.extendedEncodings = (data[0] & 2) != 0;
    options.logicalTypes = (data[0] & 4) != 0;
    options.pageChecksums = (data[0] & 8) != 0;
    options.skipsUnreadable = (data[0] & 16) != 0;
    options.selectsColumns = (data[0] & 32) != 0;
    options.selection =
        QStringList{QStringLiteral("id"), QStringLiteral("a"), QStringLiteral("a.b")};
    const int workers = (data[0] & 64) != 0 ? 1 : 0;
    const QByteArrayView bytes(data + 1, static_cast<qsizetype>(size) - 1);
    if (rowsOf(bytes, options, -1, 0) != rowsOf(bytes, options, 1 + data[0], workers)) {
        std::abort();
    }
    return 0;
}
