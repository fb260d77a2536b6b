// writers/string_columns.h
// The declared widths of text columns, for formats that store texts in fixed widths.
#pragma once
#include "corvanta/param_table.h"

#include <vector>

namespace corvanta {

/// The width of one text column, a `CD` element.
struct StringColumn
{
    QString name;
    int width = 0;   ///< bytes of UTF-8
    int longest = 0; ///< the longest text seen when the width was taken from data; 0: not known
    bool operator==(const StringColumn &) const = default;
};

/// The entries of a `StringColDef` child of `action`; empty without one.
std::vector<StringColumn> stringColumnsFromXml(const XMLNode &action);
void saveStringColumns(const std::vector<StringColumn> &columns, std::wostream &out);

/// The line of a parameter table for `columns`.
template <class P> Param<P> stringColumns(std::vector<StringColumn> P::*columns)
{
    return structure("StringColDef", columns, stringColumnsFromXml, saveStringColumns)
        .label("Widths of text columns")
        .meaning("One CD per text column: n its name, l its width in bytes, ol the longest text "
                 "seen when the width was taken from data.");
}

} // namespace corvanta
