#include "codecs/stat/row_ring.h"

#include <gtest/gtest.h>

namespace corvanta::stat {
namespace {

TEST(RowRing, EndsWithoutRows)
{
    RowRing ring(1024);
    ring.finish();
    EXPECT_EQ(ring.next(), nullptr);
}

} // namespace
} // namespace corvanta::stat
