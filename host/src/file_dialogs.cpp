// File dialogs of the panels, as thin wrappers around Qt's.
#include "corvanta/file_dialogs.h"

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
    // Asked for as a text: the host does not read archives, the readers do.
    bool ok = false;
    const QString member = QInputDialog::getText(
        parent, QCoreApplication::translate("Panels", "Archive member"),
        QCoreApplication::translate("Panels", "Name of the member inside %1").arg(name),
        QLineEdit::Normal, QString(), &ok);
    return ok && !member.isEmpty() ? name + u'@' + member : QString();
}
