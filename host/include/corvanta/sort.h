// Sorts arrays of numbers.
#pragma once
#include "corvanta/export.h"

/// Sort keys[from] to keys[to], both inclusive, ascending and stable, and move the values of the
/// same indexes along with them.
CORVANTA_EXPORT void sortIntInt(int *keys, int *values, int from, int to);
