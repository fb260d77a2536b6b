#include "actions/shared/params/string_columns.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvanta {

// The short names are those of saved graphs. All three are saved always.
const ParamTable<StringColumn> &stringColumnTable()
{
    // The names are short because a table may have hundreds of text columns.
    static const ParamTable<StringColumn> table{
        text("n", &StringColumn::name).always().label("Column").meaning("Name of the text column."),
        number("l", &StringColumn::width)
            .always()
            .label("Width")
            .meaning("Width of the column, in bytes."),
        number("ol", &StringColumn::longest)
            .always()
            .label("Longest text")
            .meaning("Bytes of the longest text that was found when the width was measured; 0: "
                     "unknown."),
    };
    return table;
}

std::vector<StringColumn> measuredColumns(const QVector<TextLength> &longest, double factor,
                                          int extraBytes)
{
    constexpr int kMax = std::numeric_limits<int>::max();
    std::vector<StringColumn> columns;
    for (const TextLength &text : longest) {
        const double width = std::ceil(static_cast<double>(text.bytes) * factor + extraBytes);
        // A width of 0 is invalid, also for a column that is always missing.
        columns.push_back({text.column, static_cast<int>(std::clamp(width, 1.0, double(kMax))),
                           static_cast<int>(std::min<qsizetype>(text.bytes, kMax))});
    }
    return columns;
}

} // namespace corvanta
