#include "actions/join/partitioned_join.h"

#include <gtest/gtest.h>

#include <random>

using namespace corvanta;

namespace {

using Rows = std::vector<std::pair<std::string, std::string>>; // key (empty: missing) and row

/// Every row of the output as "first second", in order; "-" for the row of a table without one.
std::vector<std::string> expectedRows(JoinType type, const Rows &first, const Rows &second)
{
    std::vector<std::string> joined;
    std::vector<bool> hasPartner(second.size());
    for (const auto &[key, row] : first) {
        const size_t before = joined.size();
        for (size_t i = 0; i < second.size(); ++i) {
            if (!key.empty() && second[i].first == key) {
                joined.push_back(row + ' ' + second[i].second);
                hasPartner[i] = true;
            }
        }
        if (joined.size() == before && type != JoinType::Inner) {
            joined.push_back(row + " -");
        }
    }
    for (size_t i = 0; i < second.size() && type == JoinType::Full; ++i) {
        if (!hasPartner[i]) {
            joined.push_back("- " + second[i].second);
        }
    }
    return joined;
}

/// All rows have four characters.
std::vector<std::string> joinedRows(JoinType type, const Rows &first, const Rows &second)
{
    PartitionedJoin join({.type = type, .tableBytes = 500, .spool = {.memoryBytes = 0}});
    for (const auto &[key, row] : second) {
        EXPECT_TRUE(join.putSecond(key, row));
    }
    for (const auto &[key, row] : first) {
        EXPECT_TRUE(join.putFirst(key, row));
    }
    for (auto more = join.joinNextPart(); more && *more; more = join.joinNextPart()) {
    }
    std::vector<std::string> joined;
    for (auto row = join.next(); row && *row; row = join.next()) {
        const auto &[hasFirst, hasSecond, packed] = **row;
        const std::string left(hasFirst ? packed : "-", hasFirst ? 4 : 1);
        const char *const rest = hasFirst ? packed + 4 : packed;
        joined.push_back(left + ' ' + std::string(hasSecond ? rest : "-", hasSecond ? 4 : 1));
    }
    return joined;
}

Rows randomRows(std::mt19937 &random, unsigned keys, int rows)
{
    Rows all;
    for (int i = 0; i < rows; ++i) {
        all.emplace_back("key " + std::to_string(random() % keys), std::to_string(1000 + i));
    }
    return all;
}

// Many keys are in many parts; few keys have more rows than the table may have.
TEST(PartitionedJoin, GivesTheRowsInTheOrderOfTheFirstTable)
{
    std::mt19937 random(3);
    for (const unsigned keys : {3U, 400U}) {
        Rows first = randomRows(random, keys, 300);
        first[7].first.clear();
        Rows second = randomRows(random, keys, 200);
        second.emplace_back("key none", "0000");
        for (const JoinType type : {JoinType::Inner, JoinType::Left, JoinType::Full}) {
            EXPECT_EQ(joinedRows(type, first, second), expectedRows(type, first, second));
        }
    }
}

} // namespace
