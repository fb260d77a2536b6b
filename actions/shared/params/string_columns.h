// The declared widths of text columns, for formats that store texts in fixed widths.
#pragma once
#include "corvanta/param_children.h"

#include <vector>

namespace corvanta {

/// The width of one text column, a `CD` element.
struct StringColumn
{
    QString name;
    int width = 0;   ///< bytes of UTF-8
    int longest = 0; ///< bytes of the longest text, if the width was measured; 0: unknown
    bool operator==(const StringColumn &) const = default;
};

/// The attributes of one element. Constant; made by the first call.
const ParamTable<StringColumn> &stringColumnTable();

/// The line of a parameter table for `columns`.
template <class P> Param<P> stringColumns(std::vector<StringColumn> P::*columns)
{
    return children("CD", columns, stringColumnTable())
        .inside("StringColDef")
        .label("Widths of text columns")
        .meaning("One CD (n, l, ol) per text column, with its name and its width in bytes.");
}

} // namespace corvanta
