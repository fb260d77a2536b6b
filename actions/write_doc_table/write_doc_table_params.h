// The parameters of writeDocTable.
#pragma once
#include "corvanta/param_children.h"

#include <vector>

namespace corvanta {

/// The table of one input pin, a `v` element.
struct DocTable
{
    QString markerName;
    QString colWidths; ///< comma-separated, in twentieths of a point
    QString styleID;
    bool includeHeaders = false;
    bool operator==(const DocTable &) const = default;
};

/// What a new pin starts with: the markers T1, T2, ...
DocTable defaultDocTable(int pin);

struct WriteDocTableParams
{
    QString templateName;
    QString output;
    bool processCR = true;
    bool processLF = false;
    std::vector<DocTable> tables = {defaultDocTable(0)}; ///< one per input pin, at least one
};

const ParamTable<WriteDocTableParams> &writeDocTableParamTable();

} // namespace corvanta
