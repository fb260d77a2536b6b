// Shared text cells: a zero byte and the cell's length code. 0x80 is code 0 (missing) and 0x81 is
// code 1 (empty). Layout of cells: base/cell.h.
#include "base/cell.h"

namespace corvanta::cell {

namespace {
// The byte before each code keeps the position of the (absent) units even.
alignas(8) constexpr uchar kTexts[] = {0, 0x80, 0, 0x81};
// The missing key and the missing double: all bits set.
alignas(8) constexpr uchar kOnes[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
} // namespace

const uchar *missingTextCell()
{
    return kTexts + 1;
}
const uchar *emptyTextCell()
{
    return kTexts + 3;
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
