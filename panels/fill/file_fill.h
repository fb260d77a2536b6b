// What auto-fill reads from the file of an action: its tables, and the parameters that depend on
// it.
//
// The reading works on a copy of the action, so that it can be done on any thread.
#pragma once
#include "panels/background/action_copy.h"

namespace corvanta {

/// Why the file of an action cannot be examined before a run, for example because it comes from an
/// input pin; an empty text: it can.
QString noFileReason(const ActionParameters &parameters);

struct FileFill
{
    /// One parameter that the file determines.
    struct Value
    {
        int index = 0; ///< in ActionParameters
        QString value;
    };

    QVector<Value> values;      ///< those that differ from the parameters of the action
    QVector<InputTable> tables; ///< only if no table was given; empty if there is no choice
    Note problem;               ///< an error: nothing was read
};

/// Read the beginning of the file. `table` is an index in the tables of the file; negative: the
/// most likely one. Blocks; limited as ActionParameters::fillFromInput() is.
FileFill fillFromFile(const ActionCopy &action, int table);

} // namespace corvanta
