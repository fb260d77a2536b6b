// The files that a run would replace or change, to ask before it does.
#pragma once
#include <QStringList>

#include <functional>

class CorvantaGraph;
class QWidget;

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

/// The existing files among those that a run of `graph` writes, in the order of the actions; also
/// those that match a name that depends on the rows, and "FOLDER/*" where all of the name does and
/// the folder has files. None for an invalid graph, which does not run.
/// Looks up files, so call it in the background. Threads: any.
QStringList existingTargets(const CorvantaGraph &graph, const ActionRegistry &registry);

/// Asks whether a run may replace or change these files. Blocks; on the GUI thread.
using OverwriteQuestion = std::function<bool(QWidget *parent, const QStringList &files)>;
/// The question as a message box.
bool askToOverwrite(QWidget *parent, const QStringList &files);

} // namespace corvanta::studio
