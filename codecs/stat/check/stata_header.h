// The header of a Stata file of version 117 or later; stata_check.cpp has its layout.
#pragma once
#include "codecs/stat/check/checked_reader.h"

#include <array>
#include <optional>

namespace corvanta::stat {

/// Unchecked: counts and offsets are as the file has them.
struct StataHeader
{
    /// Entries of the map.
    enum : quint8 {
        kTypes = 2,
        kLongTexts = 10,
        kAfterLongTexts = 11,
        kEnd = 12,
        kMapEntries = 14
    };

    int release = 0; ///< version of the format
    bool isBigEndian = false;
    qint64 variables = 0;
    quint64 rows = 0;
    std::array<quint64, kMapEntries> map{}; ///< offsets of the parts of the file
};

/// Nothing for an older file. `in` is at its beginning; zeros replace what it lacks.
std::optional<StataHeader> readStataHeader(CheckedReader &in);

} // namespace corvanta::stat
