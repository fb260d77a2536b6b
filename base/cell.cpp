// The shared cells of missing values. The text is a zero byte and the length code 0 (0x80). Layout
// of cells: base/cell.h.
#include "base/cell.h"

namespace corvanta::cell {

namespace {
// The byte before the code keeps the position of the (absent) units even.
alignas(8) constexpr uchar kText[] = {0, 0x80};
// The missing key and the missing double: all bits set.
alignas(8) constexpr uchar kOnes[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
} // namespace

const uchar *missingTextCell()
{
    return kText + 1;
}
const uchar *missingKeyCell()
{
    return kOnes;
}
const uchar *missingDoubleCell()
{
    return kOnes;
}

} // namespace corvanta::cell
