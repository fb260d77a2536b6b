// Sweeps: try a damage, a piece size or a failed write at every place of a small input.
//
// Each sweep calls `check` once per place and adds the place to the messages of assertions that
// fail. Unit tests sweep over bytes in memory, tests/sweeps over files and whole runs.
#pragma once
#include "tests/support/failing_sink.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace corvanta::test {

inline constexpr qsizetype kAllPlaces = std::numeric_limits<qsizetype>::max();

/// Offsets from `first` to `size` - 1: all of them, or about `maxPlaces` at equal distances. A
/// sample begins with `first` and ends with `size` - 1.
inline std::vector<qsizetype> placesIn(qsizetype size, qsizetype maxPlaces = kAllPlaces,
                                       qsizetype first = 0)
{
    std::vector<qsizetype> places;
    const qsizetype step = 1 + (size - first) / std::max<qsizetype>(1, maxPlaces);
    for (qsizetype place = first; place < size; place += step) {
        places.push_back(place);
    }
    if (!places.empty() && places.back() != size - 1) {
        places.push_back(size - 1);
    }
    return places;
}

/// Call check(cut) with the first n bytes, for n from 0 to size - 1.
template <class Check>
void forEveryTruncation(const QByteArray &bytes, const Check &check,
                        qsizetype maxPlaces = kAllPlaces)
{
    for (const qsizetype place : placesIn(bytes.size(), maxPlaces)) {
        SCOPED_TRACE(testing::Message() << "cut at " << place);
        check(bytes.first(place));
    }
}

/// Call check(damaged) with one bit flipped: each bit, or about `maxPlaces` of them.
template <class Check>
void forEveryFlip(const QByteArray &bytes, const Check &check, qsizetype maxPlaces = kAllPlaces)
{
    QByteArray damaged = bytes;
    for (const qsizetype bit : placesIn(8 * bytes.size(), maxPlaces)) {
        SCOPED_TRACE(testing::Message() << "bit " << bit % 8 << " of byte " << bit / 8);
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
        check(damaged);
        damaged[bit / 8] = bytes[bit / 8];
    }
}

/// Call check(n) for piece sizes that make every token and record span pieces, and for one that is
/// larger than any test input.
template <class Check> void forEverySplit(const Check &check)
{
    for (const int pieceBytes : {1, 2, 3, 7, 64, 1 << 16}) {
        SCOPED_TRACE(testing::Message() << "in pieces of " << pieceBytes << " bytes");
        check(pieceBytes);
    }
}

/// Call check(sink) for each of the first `calls` writes and flushes, with a sink that refuses only
/// this call.
template <class Check> void forEveryFailedWrite(int calls, const Check &check)
{
    for (int failing = 0; failing < calls; ++failing) {
        SCOPED_TRACE(testing::Message() << "call " << failing << " fails");
        FailingSink sink([=](int call) { return call == failing; });
        check(sink);
    }
}

} // namespace corvanta::test
