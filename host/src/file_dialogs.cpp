// File dialogs of the panels, as thin wrappers around Qt's.
#include "corvanta/file_dialogs.h"

#include "corvanta/corvanta_graph.h"
#include "corvanta/input_source.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QInputDialog>

using namespace Qt::StringLiterals;

QString tGetOpenFileName(QWidget *parent, const QString &title, const QString &start,
                         const QString &filter)
{
    return QFileDialog::getOpenFileName(parent, title, start, filter);
}

QString tGetSaveFileName(QWidget *parent, const QString &title, const QString &start,
                         const QString &filter)
{
    return QFileDialog::getSaveFileName(parent, title, start, filter);
}

QString browseArchive(QWidget *parent, const QString &name)
{
    const QString archive = fileOfInput(name);
    const QString title = QCoreApplication::translate("Panels", "Archive member");
    const QString text =
        QCoreApplication::translate("Panels", "Name of the member inside %1").arg(archive);
    const auto members = corvanta::input::archiveMembers(archive);
    bool ok = false;
    // A name can be typed too: a later run may find a pattern, or an archive that is not there yet.
    const QString member =
        members && !members->isEmpty()
            ? QInputDialog::getItem(parent, title, text, *members, 0, true, &ok)
            : QInputDialog::getText(parent, title, text, QLineEdit::Normal, QString(), &ok);
    return ok && !member.isEmpty() ? archive + u'@' + member : QString();
}
