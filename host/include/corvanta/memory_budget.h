// Memory that actions may use for caches.
#pragma once
#include "corvanta/export.h"

/// `percent` (0 or more) of the cache budget of the process, 1 GiB, in bytes. Negative values count
/// as 0; the result is at most the largest int.
CORVANTA_EXPORT int memConsumptionInByte(int percent);
