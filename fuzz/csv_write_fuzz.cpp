// Rows of any content as CSV: reading the text back gives the same fields.
//
// Byte 0: the separator. The table follows.
#include "base/number.h"
#include "codecs/csv/record_reader.h"
#include "codecs/csv/record_writer.h"
#include "fuzz/support/require.h"
#include "fuzz/support/table.h"

using namespace corvanta;
using namespace corvanta::csv;

namespace {

bool holdsText(const Field &field, std::u16string_view text)
{
    std::string bytes(text.size() * kUtf8BytesPerUnit, '\0');
    bytes.resize(static_cast<size_t>(
        utf16ToUtf8(text.data(), static_cast<qsizetype>(text.size()), bytes.data())));
    return field.view() == bytes && (field.isQuoted || !text.empty());
}

bool isMissing(const Field &field)
{
    return field.size == 0 && !field.isQuoted;
}

bool holdsDouble(const Field &field, double value)
{
    double back = 0;
    if (cell::isMissingDouble(value)) {
        return isMissing(field);
    }
    return parseDouble(field.view(), &back) && (back == value || (back != back && value != value));
}

bool holdsCell(const Field &field, cell::Type type, const uchar *bytes)
{
    if (type == cell::Type::Double) {
        return holdsDouble(field, loadNative<double>(bytes));
    }
    if (type == cell::Type::Key) {
        const auto key = loadNative<quint32>(bytes);
        quint64 back = 0;
        return cell::isMissingKey(key)
                   ? isMissing(field)
                   : parseUInt(field.view(), cell::kMissingKey, &back) && back == key;
    }
    const cell::Text text = cell::readText(bytes);
    return text.isMissing() ? isMissing(field) : holdsText(field, text.view());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const char separator = ",;\t |"[feed.below(5)];
    const FuzzTable table(feed);
    RecordWriter writer(separator);
    writer.addNames(table.row(0));
    for (int row = 0; row < table.rowCount(); ++row) {
        writer.addRow(table.row(row));
    }
    MemorySource source(writer.bytes());
    RecordReader reader(source, {.separator = separator}, {256, size_t(1) << 24});
    const RowView names = table.row(0);
    for (int row = -1; row < table.rowCount(); ++row) {
        const auto found = reader.next();
        require(found && *found && reader.fields().size() == static_cast<size_t>(names.columns));
        for (int i = 0; i < names.columns; ++i) {
            const Field &field = reader.fields()[static_cast<size_t>(i)];
            require(row < 0 ? holdsText(field, names.names[i].toStdU16String())
                            : holdsCell(field, names.type(i), table.row(row).cells[i]));
        }
    }
    const auto end = reader.next();
    require(end && !*end);
    return 0;
}
