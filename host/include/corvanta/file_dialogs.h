// Dialogs in which the user of a panel chooses a file.
//
// Threads: the GUI thread. All functions block until the user has answered.
#pragma once
#include "corvanta/export.h"

#include <QString>

class QWidget;

/// Choose an existing file, or a file to write. `start` is the folder or file shown first; `filter`
/// has the form of QFileDialog ("Text (*.txt);;All (*)"). Returns a null string when cancelled.
CORVANTA_EXPORT QString tGetOpenFileName(QWidget *parent, const QString &title,
                                         const QString &start, const QString &filter);
CORVANTA_EXPORT QString tGetSaveFileName(QWidget *parent, const QString &title,
                                         const QString &start, const QString &filter);

/// Choose a member of the archive `name`, which may name one already, from the list of its members
/// or, if that cannot be read, by typing. Returns the name to give to a reader, ARCHIVE@MEMBER, or
/// a null string when cancelled.
CORVANTA_EXPORT QString browseArchive(QWidget *parent, const QString &name);
