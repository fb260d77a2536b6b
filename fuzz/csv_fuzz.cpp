// Any bytes as CSV: the records do not depend on how the bytes arrive, and formatting them and
// reading the result back gives the same fields.
//
// Byte 0: the separator. The text follows.
#include "codecs/csv/record_reader.h"

#include <cstdlib>

using namespace corvanta;
using namespace corvanta::csv;

namespace {

/// Every field as a quoted field, every record on its own line.
QByteArray normalised(QByteArrayView text, char separator, qint64 piece, size_t blockBytes)
{
    MemorySource source(text, piece);
    RecordReader reader(source, {.separator = separator}, {blockBytes, size_t(1) << 20});
    QByteArray all;
    for (auto found = reader.next(); found && *found; found = reader.next()) {
        for (const Field &field : reader.fields()) {
            QByteArray content(field.text, field.size);
            all += '"' + content.replace("\"", "\"\"") + '"' + separator;
        }
        all.back() = '\n';
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0 || data[0] >= 0x80 || data[0] == '"' || data[0] == '\n' || data[0] == '\r') {
        return 0;
    }
    const char separator = static_cast<char>(data[0]);
    const QByteArrayView text(data + 1, static_cast<qsizetype>(size) - 1);
    const QByteArray whole = normalised(text, separator, -1, size_t(1) << 16);
    if (whole != normalised(text, separator, 3, 7) ||
        whole != normalised(whole, separator, -1, 64)) {
        std::abort();
    }
    return 0;
}
