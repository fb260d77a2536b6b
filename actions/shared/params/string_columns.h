// The declared widths of text columns, for formats that store texts in fixed widths.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/params/param_children.h"

#include <vector>

namespace corvanta {

/// Name of the parameter, for messages about it.
inline constexpr char kStringColumns[] = "StringColDef";

/// The width of one text column, a `CD` element.
struct StringColumn
{
    /// Name of the column.
    QString name;
    /// Bytes of UTF-8; 0: unknown.
    int width = 0;
    /// Bytes of the longest text, if the width was measured; 0: unknown.
    int longest = 0;
    bool operator==(const StringColumn &) const = default;
};

/// The attributes of a `CD` element. Constant; made by the first call.
const ParamTable<StringColumn> &stringColumnTable();

/// The line of a parameter table for `columns`. They are saved inside a `StringColDef` element.
template <class P> Param<P> stringColumns(std::vector<StringColumn> P::*columns)
{
    return children("CD", columns, stringColumnTable())
        .inside(kStringColumns)
        .label("Widths of text columns")
        .meaning("One CD (n, l, ol) per text column, with its name and its width in bytes.");
}

} // namespace corvanta
