// Finds the order in which the actions of a run may use their files.
//
// Actions that write one file run one after another. "Earlier" follows the links, else the order of
// the actions. What no order can make right is a conflict, which makes the graph invalid.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <set>
#include <utility>

namespace corvanta {

/// The files of one action, as it declares them (ActionParameters).
struct FileUser
{
    QString id;
    int line = 0; ///< of the action in its graph file; 0: none
    QVector<TargetUse> targets = {};
    QStringList inputs = {};
};

/// Whether the action writes or may write a file. Otherwise its rows are all it does.
bool writesFiles(const ActionItem &action);

/// Two actions whose files exclude each other.
struct TargetConflict
{
    int line = 0; ///< as in FileUser
    QString text; ///< names both actions and the file
    int action = 0;
    int other = 0;
};

/// Numbers of actions are their indexes. The lists are as long as there are actions.
struct TargetOrder
{
    /// The actions that must be closed before this one starts: they write one of its targets.
    QVector<QVector<int>> startAfter;
    /// The actions that must have taken all their input before this one closes: they read a file
    /// that it replaces, and see the old content to its end.
    QVector<QVector<int>> closeAfter;
    /// The pairs of actions that write one file, the smaller index first.
    std::set<std::pair<int, int>> shared;
    QVector<TargetConflict> conflicts;
};

/// The order for `users`, connected by `links` (from, to), which form no loop. Names are compared
/// as the files that they lead to. A conflict sets no order.
TargetOrder orderByTargets(const QVector<FileUser> &users,
                           const QVector<std::pair<int, int>> &links);

} // namespace corvanta
