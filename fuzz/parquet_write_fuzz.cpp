// Rows of any content as a Parquet file: reading the file gives the same cells. Cells as values of
// typed columns: dates and times are those that another reader of them finds.
//
// Bytes 0 to 3: options of the writer, and how often the rows are repeated. The table follows.
#include "base/time/iso_time.h"
#include "codecs/parquet/read/table_reader.h"
#include "codecs/parquet/write/file_writer.h"
#include "codecs/parquet/write/typed_value.h"
#include "fuzz/support/require.h"
#include "fuzz/support/table.h"

using namespace corvanta;
using namespace corvanta::parquet;

namespace {

std::vector<WriterColumn> columnsOf(const FuzzTable &table, int options)
{
    constexpr Storage kKeys[] = {Storage::KeyAsUint32, Storage::KeyAsInt32, Storage::KeyAsInt64};
    const RowView row = table.row(0);
    std::vector<WriterColumn> columns;
    for (int i = 0; i < row.columns; ++i) {
        const cell::Type type = row.type(i);
        const Storage storage = type == cell::Type::Text     ? Storage::Text
                                : type == cell::Type::Double ? Storage::Double
                                                             : kKeys[(options + i) % 3];
        // Readers find columns by name, so each needs its own.
        columns.push_back({QByteArray::number(i) + row.names[i].toUtf8(), storage, i});
    }
    return columns;
}

bool isSame(cell::Type type, const uchar *written, const uchar *read)
{
    if (type == cell::Type::Double) {
        return loadNative<quint64>(written) == loadNative<quint64>(read);
    }
    if (type == cell::Type::Key) {
        const auto key = loadNative<quint32>(written);
        const auto back = loadNative<quint32>(read);
        return key == back || (cell::isMissingKey(key) && cell::isMissingKey(back));
    }
    const cell::Text text = cell::readText(written);
    const cell::Text back = cell::readText(read);
    // The reader removes zeros at the end of a text.
    std::u16string expected = withoutLoneSurrogates(text.view());
    expected.resize(expected.find_last_not_of(u'\0') + 1);
    return text.isMissing() == back.isMissing() && expected == back.view();
}

/// Moments are those of the reader of ISO texts, and a number is a value of one or of both types.
void checkTyped(cell::Type type, const uchar *cell)
{
    const auto of = [&](Storage storage) { return typedValueOf(storage, type, cell); };
    const bool isText = type == cell::Type::Text;
    const std::u16string_view text = isText ? cell::readText(cell).view() : std::u16string_view();
    const auto day = parseIsoDate(text);
    const auto date = of(Storage::Date);
    require(day.has_value() == date.has_value() && (!day || *day == date->number));
    const auto clock = parseIsoTime(text);
    const auto time = of(Storage::Time);
    require(time.has_value() == (clock && *clock % 1000 == 0));
    require(!time || time->number * 1000 == *clock);
    const auto moment = parseIsoDateTime(text);
    const auto stamp = of(Storage::Timestamp);
    require(stamp.has_value() == (moment && moment->nanoseconds % 1000 == 0));
    require(!stamp || (stamp->isUtc == moment->isUtc &&
                       stamp->number == moment->day * 86'400'000'000 + moment->nanoseconds / 1000));
    const auto integer = of(Storage::Integer);
    require(!integer || !isText ||
            QString::number(integer->number) == QStringView(text.data(), qsizetype(text.size())));
    const auto boolean = of(Storage::Boolean);
    require(!boolean || boolean->number == 0 || boolean->number == 1);
    require(!isText || !isNull(type, cell) || !(date || time || stamp || integer || boolean));
}

/// Whether the file could be written: a text may be too long for a page.
bool write(const FuzzTable &table, int times, int codec, Feed &options, MemorySink &sink)
{
    WriteOptions how;
    how.pageSizeKiB = 1 + options.below(64);
    const int flags = options.byte();
    how.rowGroupMiB = (flags & 1) != 0 ? 0 : 50;
    how.dictionaryPages = (flags & 2) != 0;
    how.statistics = (flags & 4) != 0;
    PageCompressor compressor(codec, (flags & 8) != 0 ? 1 : 0);
    FileWriter writer(sink, columnsOf(table, flags), how, compressor);
    require(bool(writer.begin()));
    for (int i = 0; i < times * table.rowCount(); ++i) {
        if (const auto added = writer.addRow(table.row(i % table.rowCount()).cells); !added) {
            require(added.fault().code == Error::TextTooLong);
            return false;
        }
    }
    return bool(writer.finish());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr int kCodecs[] = {kUncompressed, kSnappy, kGzip, kBrotli, kZstd, kLz4Raw};
    Feed feed(data, size);
    Feed options(data, qMin<size_t>(size, 4));
    feed.bytes(4);
    const FuzzTable table(feed);
    const int codec = kCodecs[options.below(6)];
    const int times = 1 + options.below(40);
    MemorySink sink;
    if (!write(table, times, codec, options, sink)) {
        return 0;
    }
    MemorySource source(sink.bytes());
    ReadOptions how;
    how.extendedEncodings = true;
    const auto reader = TableReader::open(source, how, 0);
    require(bool(reader));
    const RowView names = table.row(0);
    std::vector<const uchar *> cells(static_cast<size_t>(names.columns));
    for (int row = 0; row < times * table.rowCount(); ++row) {
        const auto more = (*reader)->next(cells.data());
        require(more && *more);
        for (int i = 0; i < names.columns; ++i) {
            checkTyped(names.type(i), table.row(row % table.rowCount()).cells[i]);
            require(isSame(names.type(i), table.row(row % table.rowCount()).cells[i],
                           cells[static_cast<size_t>(i)]));
        }
    }
    const auto end = (*reader)->next(cells.data());
    require(end && !*end);
    return 0;
}
