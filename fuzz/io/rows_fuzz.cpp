// Rows of any content, packed: sorted in little memory they are in the order of their keys, and a
// hash table finds all rows of each key.
//
// Bytes 0 to 6: the memory of the sorter and two key columns. The table follows.
#include "fuzz/support/require.h"
#include "fuzz/support/table.h"
#include "io/rows/packed_row.h"
#include "io/rows/row_key.h"
#include "io/rows/row_sorter.h"
#include "io/rows/row_table.h"

#include <map>

using namespace corvanta;
using namespace corvanta::rows;

namespace {

struct KeyBytes
{
    quint8 column, isAscending, order;
};

std::vector<KeyColumn> keyColumns(const RowView &row, const std::array<KeyBytes, 2> &bytes)
{
    // Numbers are rare, because few texts are numbers.
    constexpr TextOrder kOrders[] = {TextOrder::CodePoints, TextOrder::Numbers, TextOrder::Words,
                                     TextOrder::CodePoints};
    std::vector<KeyColumn> columns;
    columns.reserve(bytes.size());
    for (const KeyBytes &key : bytes) {
        const int column = key.column % row.columns;
        columns.push_back({column, row.type(column), key.isAscending % 2 == 0,
                           kOrders[key.order % std::size(kOrders)]});
    }
    return columns;
}

/// A key and a packed row, as an action writes them; the sizes are those of the parts.
struct Packed
{
    std::string bytes;
    qsizetype keyBytes = 0;
    std::string key() const { return bytes.substr(0, static_cast<size_t>(keyBytes)); }
    std::string row() const { return bytes.substr(static_cast<size_t>(keyBytes)); }
};

/// Nothing if a text of a column of numbers is not a number.
std::optional<Packed> pack(KeyEncoder &encoder, const ColumnTypes &types, const RowView &row)
{
    Packed packed;
    packed.bytes.resize(
        static_cast<size_t>(encoder.bytesAtMost(row.cells) + packedBytesAtMost(types, row.cells)));
    char *const begin = packed.bytes.data();
    char *const keyEnd = encoder.put(row.cells, begin);
    if (keyEnd == nullptr) {
        require(types[static_cast<size_t>(encoder.failedColumn())] == cell::Type::Text);
        return std::nullopt;
    }
    const char *const end = packRow(types, row.cells, keyEnd);
    packed.keyBytes = keyEnd - begin;
    require(end <= begin + packed.bytes.size());
    packed.bytes.resize(static_cast<size_t>(end - begin));
    return packed;
}

void requireCells(const ColumnTypes &types, const Packed &packed, const RowView &row)
{
    RowBuffer buffer(1 << 12);
    const std::string bytes = packed.row();
    std::vector<const uchar *> cells(types.size());
    require(unpackRow(types, bytes.data(), &buffer, cells.data()) == bytes.data() + bytes.size());
    for (size_t i = 0; i < types.size(); ++i) {
        if (types[i] == cell::Type::Text) {
            const QString text = qStringFromBytes(row.cells[i]);
            require(qStringFromBytes(cells[i]) == text);
            require(qStringFromBytes(cells[i]).isNull() == text.isNull());
        } else {
            const size_t size = types[i] == cell::Type::Key ? cell::kKeyBytes : cell::kDoubleBytes;
            require(std::memcmp(cells[i], row.cells[i], size) == 0);
        }
    }
}

/// What a stable sort by the bytes of the keys gives.
void checkSorter(const std::multimap<std::string, std::string> &expected,
                 const std::vector<Packed> &rows, qint64 memoryBytes)
{
    RowSorter sorter({.memoryBytes = memoryBytes});
    for (const Packed &packed : rows) {
        const auto size = static_cast<qsizetype>(packed.bytes.size());
        std::memcpy(sorter.room(size), packed.bytes.data(), packed.bytes.size());
        require(bool(sorter.commit(packed.keyBytes, size - packed.keyBytes)));
    }
    require(bool(sorter.finish()));
    for (const auto &[key, row] : expected) {
        const auto next = sorter.next();
        require(next && *next && **next == row);
    }
    const auto end = sorter.next();
    require(end && !*end);
}

void checkTable(const std::multimap<std::string, std::string> &expected,
                const std::vector<Packed> &rows)
{
    RowTable table;
    for (const Packed &packed : rows) {
        const auto size = static_cast<qsizetype>(packed.bytes.size());
        std::memcpy(table.room(size), packed.bytes.data(), packed.bytes.size());
        table.commit(packed.keyBytes, size - packed.keyBytes);
    }
    table.index();
    require(table.size() == static_cast<int>(rows.size()));
    for (auto at = expected.begin(); at != expected.end();) {
        int found = table.find(at->first);
        const auto end = expected.upper_bound(at->first);
        for (; at != end; ++at, found = table.findNext(found)) {
            require(found != RowTable::kNone && table.at(found).row == at->second);
        }
        require(found == RowTable::kNone);
    }
    table.clear();
    table.index();
    require(rows.empty() || table.find(rows[0].key()) == RowTable::kNone);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const qint64 memoryBytes = qint64(1) << feed.below(21);
    std::array<KeyBytes, 2> keyBytes{};
    for (KeyBytes &key : keyBytes) {
        key = {feed.byte(), feed.byte(), feed.byte()};
    }
    const FuzzTable table(feed);
    ColumnTypes types;
    for (int i = 0; i < table.row(0).columns; ++i) {
        types.push_back(table.row(0).type(i));
    }
    KeyEncoder encoder(keyColumns(table.row(0), keyBytes));
    std::vector<Packed> rows;
    std::multimap<std::string, std::string> expected; // keeps the order of equal keys
    for (int i = 0; i < table.rowCount(); ++i) {
        if (auto packed = pack(encoder, types, table.row(i))) {
            requireCells(types, *packed, table.row(i));
            expected.emplace(packed->key(), packed->row());
            rows.push_back(*std::move(packed));
        }
    }
    checkSorter(expected, rows, memoryBytes);
    checkTable(expected, rows);
    return 0;
}
