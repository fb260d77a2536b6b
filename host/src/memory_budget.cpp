#include "corvanta/memory_budget.h"

#include <QtGlobal>

#include <limits>

int memConsumptionInByte(int percent)
{
    constexpr qint64 budget = qint64(1) << 30;
    return static_cast<int>(
        qMin<qint64>(budget / 100 * qMax(percent, 0), std::numeric_limits<int>::max()));
}
