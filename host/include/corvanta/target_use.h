// What an action does to a file that it writes.
//
// Known before a run from the parameters alone, so that a graph whose actions would damage each
// other's files is rejected, and `corvanta check --list-outputs` can print the files.
#pragma once
#include <QString>

/// One target of an action.
struct TargetUse
{
    enum class Access {
        Create, ///< The file gets a new content, whether or not it exists.
        Update, ///< The file is read, and replaced when its new content is complete.
        Append, ///< The file is extended in place.
    };

    QString name; ///< expanded: absolute, with the values of variables
    Access access = Access::Create;
    /// The files of a table that is split: each "*" in the last part of `name` stands for any text.
    /// Otherwise a "*" is a character of the name.
    bool isPattern = false;
};
