// Numbers of rows are big-endian, so that they sort as bytes.
//
//   record in a file of a part   key of the join; number of the row (8 bytes), packed row
//   joined row                   key: 0 and the number of the row of the first table, or 1 and that
//                                of a row of the second table without a partner
//                                row: what it has (1 byte), packed rows of the tables
#include "actions/join/partitioned_join.h"

#include "base/bytes.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace corvanta {

namespace {

constexpr int kPartBits = 6;
constexpr int kHashBits = 32;
constexpr size_t kNumberBytes = 8;

enum : char { HasFirst = 1, HasSecond = 2 };

/// The part of a key. The table uses the low bits of the hash, the parts the high ones.
size_t partOf(std::string_view key)
{
    return rows::hashOf(key) >> (kHashBits - kPartBits);
}

/// Returns the end of the bytes in `out`.
char *append(char *out, std::string_view bytes)
{
    return std::copy(bytes.begin(), bytes.end(), out); // unlike memcpy() it accepts an empty view
}

/// A record of a part is the number of its row, then the row. See put().
std::string_view numberOf(const rows::Record &record)
{
    return record.row.substr(0, kNumberBytes);
}

std::string_view packedOf(const rows::Record &record)
{
    return record.row.substr(kNumberBytes);
}

} // namespace

/// The number of parts does not depend on the data, whose size is not known yet.
PartitionedJoin::PartitionedJoin(Options options)
    : m_options(std::move(options))
    , m_parts(size_t(1) << kPartBits)
    , m_joined(m_options.sorter)
{
    for (Part &part : m_parts) {
        part = {makeSpool(), makeSpool()};
    }
}

/// The number is big endian, so that the order of bytes is the order of rows.
Result<void, SpoolError> PartitionedJoin::put(rows::RecordSpool &spool, std::string_view key,
                                              qint64 number, std::string_view row)
{
    const size_t rowBytes = kNumberBytes + row.size();
    m_record.clear();
    char *const out = append(m_record.room(qsizetype(key.size() + rowBytes)), key);
    storeBE(quint64(number), out);
    append(out + kNumberBytes, row);
    const auto offset = m_record.commit(qsizetype(key.size()), qsizetype(rowBytes));
    return checked(spool.put(m_record.at(offset).bytes()), spool.error());
}

Result<void, SpoolError> PartitionedJoin::putSecond(std::string_view key, std::string_view row)
{
    return put(*m_parts[partOf(key)].second, key, m_secondRows++, row);
}

/// A row with an empty key has no partner: it goes to the result directly, or nowhere.
Result<void, SpoolError> PartitionedJoin::putFirst(std::string_view key, std::string_view row)
{
    const qint64 number = m_firstRows++;
    if (!key.empty()) {
        return put(*m_parts[partOf(key)].first, key, number, row);
    }
    if (m_options.type == JoinType::Inner) {
        return {};
    }
    std::array<char, kNumberBytes> bytes{};
    storeBE(quint64(number), bytes.data());
    return addResult(false, {bytes.data(), bytes.size()}, row, {});
}

/// Adds a row of the output. A table without its row has a null view.
Result<void, SpoolError> PartitionedJoin::addResult(bool isAlone, std::string_view number,
                                                    std::string_view first, std::string_view second)
{
    const size_t rowBytes = 1 + first.size() + second.size();
    char *const key = m_joined.room(qsizetype(1 + number.size() + rowBytes));
    key[0] = isAlone ? 1 : 0;
    char *const row = append(key + 1, number);
    row[0] = static_cast<char>((first.data() != nullptr ? HasFirst : 0) |
                               (second.data() != nullptr ? HasSecond : 0));
    append(append(row + 1, first), second);
    return checked(m_joined.commit(row - key, qsizetype(rowBytes)), m_joined.error());
}

/// Takes rows until the table is full or the file ends.
Result<bool, SpoolError> PartitionedJoin::fillTable(rows::RecordSpool &second)
{
    m_table.clear();
    while (m_table.bytes() < m_options.tableBytes) {
        const auto record = checked(second.next(), second.error());
        if (!record) {
            return record.fault();
        }
        if (!*record) {
            m_table.index();
            return false;
        }
        const auto &[key, row] = **record;
        append(append(m_table.room(qsizetype(key.size() + row.size())), key), row);
        m_table.commit(qsizetype(key.size()), qsizetype(row.size()));
    }
    m_table.index();
    return true;
}

/// The files of a part are removed when it is joined.
Result<bool, SpoolError> PartitionedJoin::joinNextPart()
{
    if (m_nextPart == m_parts.size()) {
        const auto finished = checked(m_joined.finish(), m_joined.error());
        return finished ? Result<bool, SpoolError>(false) : finished.fault();
    }
    Part part = std::exchange(m_parts[m_nextPart++], {}); // its files are removed at the end
    if (const auto done = checked(part.second->rewind(), part.second->error()); !done) {
        return done.fault();
    }
    m_firstHasPartner.clear();
    for (bool hasMore = true; hasMore;) {
        const auto filled = fillTable(*part.second);
        if (!filled) {
            return filled.fault();
        }
        hasMore = *filled;
        if (const auto joined = joinTable(part, !hasMore); !joined) {
            return joined.fault();
        }
    }
    return true;
}

/// Joins the rows of the table with all rows of the first table's file, which is written again
/// unless this was the last time.
Result<void, SpoolError> PartitionedJoin::joinTable(Part &part, bool isLast)
{
    m_secondHasPartner.assign(size_t(m_table.size()), false);
    if (auto done = checked(part.first->rewind(), part.first->error()); !done) {
        return done;
    }
    auto again = makeSpool();
    for (size_t index = 0;; ++index) {
        const auto row = checked(part.first->next(), part.first->error());
        if (!row) {
            return row.fault();
        }
        if (!*row) {
            break;
        }
        if (m_options.sorter.isRunning && !m_options.sorter.isRunning()) {
            return Fault{SpoolError::CannotRead};
        }
        auto joined = joinRow(**row, index, isLast);
        if (joined && !isLast) {
            joined = checked(again->put((*row)->bytes()), again->error());
        }
        if (!joined) {
            return joined;
        }
    }
    part.first = isLast ? nullptr : std::move(again);
    return m_options.type == JoinType::Full ? addSecondAlone() : Result<void, SpoolError>();
}

/// `index` is that of a row of the first table in its file.
Result<void, SpoolError> PartitionedJoin::joinRow(const rows::Record &row, size_t index,
                                                  bool isLast)
{
    m_firstHasPartner.resize(std::max(m_firstHasPartner.size(), index + 1));
    for (int found = m_table.find(row.key); found != rows::RowTable::kNone;
         found = m_table.findNext(found)) {
        m_firstHasPartner[index] = m_secondHasPartner[size_t(found)] = true;
        auto added = addResult(false, numberOf(row), packedOf(row), packedOf(m_table.at(found)));
        if (!added) {
            return added;
        }
    }
    const bool isAlone = isLast && !m_firstHasPartner[index];
    return isAlone && m_options.type != JoinType::Inner
               ? addResult(false, numberOf(row), packedOf(row), {})
               : Result<void, SpoolError>();
}

/// The table has had all rows of the part's first file as possible partners.
Result<void, SpoolError> PartitionedJoin::addSecondAlone()
{
    for (int row = 0; row < m_table.size(); ++row) {
        if (m_secondHasPartner[size_t(row)]) {
            continue;
        }
        const rows::Record record = m_table.at(row);
        if (auto added = addResult(true, numberOf(record), {}, packedOf(record)); !added) {
            return added;
        }
    }
    return {};
}

/// The first byte of a joined row says which of the two rows it has.
Result<std::optional<PartitionedJoin::JoinedRow>, SpoolError> PartitionedJoin::next()
{
    const auto row = checked(m_joined.next(), m_joined.error());
    if (!row) {
        return row.fault();
    }
    if (!*row) {
        return std::optional<JoinedRow>();
    }
    const char *const bytes = (*row)->data();
    return std::optional(
        JoinedRow{(bytes[0] & HasFirst) != 0, (bytes[0] & HasSecond) != 0, bytes + 1});
}

} // namespace corvanta
