// The rows that the preview of a writer shows: the first rows of its input, or sample values.
#pragma once
#include "corvanta/corvanta_graph.h"
#include "corvanta/meta_info.h"

#include <QStringList>
#include <QVector>

class ActionItem;

namespace corvanta {

/// A table of few rows, as text; null strings are missing cells.
struct PreviewRows
{
    static constexpr int kMaxRows = 5;

    TableSchema columns;
    QVector<QStringList> rows;
    bool isSample = true; ///< the values are made up
};

/// Values for the columns that the host knows, or for two columns if it knows none. Threads: any.
PreviewRows sampleRows(TableSchema columns);

/// The part of the edited graph that input pin 0 of an action depends on.
struct InputPart
{
    CorvantaGraph graph; ///< with the action itself; without actions: nothing is linked to the pin
    QString id;          ///< of the action

    bool isLinked() const { return !graph.actions.isEmpty(); }
};
/// The part for `action` as it is now. Threads: the GUI thread.
InputPart inputPartOf(const ActionItem &action);
/// Run the part and return its first rows; none when it fails or would write a file. Threads: any;
/// blocks.
PreviewRows inputRows(const InputPart &part);

} // namespace corvanta
