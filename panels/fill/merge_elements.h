// Adds the elements that were found in a file to those that an action has: levels and their
// columns.
//
// Two elements are the same if their attributes are, except for the name, which users change. Level
// n + 1 is inside level n, so levels are compared by their number. What exists is kept, with
// attributes and elements that nothing here knows.
// Threads: pure functions.
#pragma once
#include "corvanta/action_parameters.h"

namespace corvanta {

struct MergedElements
{
    QString xml;    ///< the value of the parameter
    int levels = 0; ///< number of added elements
    int items = 0;  ///< number of added inner elements
    /// The first element that was found and has another one in its place; the elements after it
    /// are not added either. Empty: there is none.
    QString conflict;
};

/// Whether a value has an inner element: levels without columns give no table.
bool hasItems(const ParameterInfo &info, const QString &value);
/// `info` is a Structure without a wrapper whose elements have one list inside. Both texts are
/// values of it. An existing value without inner elements is replaced. An added name that exists
/// gets a number.
MergedElements mergeElements(const ParameterInfo &info, const QString &existing,
                             const QString &found);

} // namespace corvanta
