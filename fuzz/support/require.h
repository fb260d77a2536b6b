// The check of the fuzz targets: a property that does not hold ends the program.
#pragma once
#include <cstdlib>

/// Abort unless the property holds.
inline void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}
