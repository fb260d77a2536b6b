#include "actions/shared/params/row_range.h"

using namespace Qt::StringLiterals;

namespace corvanta::shared {

namespace {

/// Another value must not read all rows: several runs would then read each row.
std::optional<qint64> rowNumber(ActionBase &action, const QString &name, const QString &saved,
                                qint64 low)
{
    const QString text = action.expandString(saved);
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber);
    if (!isNumber || number < low) {
        action.fail(u"Error: '%1' is not a value of %2; allowed: a whole number from %3\n"_s.arg(
            text, name, QString::number(low)));
        return std::nullopt;
    }
    return number;
}

} // namespace

std::optional<RowRange> rowRangeOf(ActionBase &action, const RowRangeParams &params)
{
    const auto first = rowNumber(action, u"firstRow"_s, params.firstRow, 1);
    const auto count = rowNumber(action, u"rowCount"_s, params.rowCount, 0);
    return first && count ? std::optional(RowRange{*first - 1, *count}) : std::nullopt;
}

} // namespace corvanta::shared
