// The parameters of writeDocTable.
#pragma once
#include "corvanta/params/param_children.h"

#include <vector>

namespace corvanta {

/// The table of one input pin, a `v` element.
struct DocTable
{
    /// Name of the marker that the table replaces, without percent signs.
    QString markerName;
    /// Widths of the columns, comma-separated, in twentieths of a point.
    QString colWidths;
    /// Identifier of a table style of the template.
    QString styleID;
    /// The first row of the table holds the names of the columns.
    bool includeHeaders = false;
    bool operator==(const DocTable &) const = default;
};

/// The marker as templates hold it: the name between percent signs, in UTF-8.
QByteArray markerOf(const DocTable &table);

/// What pin `pin` (from 0) starts with: the markers T1, T2, ...
DocTable defaultDocTable(int pin);

struct WriteDocTableParams
{
    // Names of Word documents; the template is read and stays unchanged.
    QString templateName;
    QString output;
    /// Line ends in cells become line breaks.
    bool processCR = true;
    /// The two characters backslash and n become a line break.
    bool processLF = false;
    /// Markers are found although runs divide them.
    bool joinRuns = false;
    /// Tables are between paragraphs, and line breaks outside of text elements.
    bool strictMarkup = false;
    /// One per input pin, at least one.
    std::vector<DocTable> tables = {defaultDocTable(0)};
};

/// Attributes of `writeDocTable`, then its child elements.
const ParamTable<WriteDocTableParams> &writeDocTableParamTable();

} // namespace corvanta
