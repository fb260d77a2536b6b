// Templates are in the folder of the program in a build, and below share/ in an installation, which
// is found from the folder of this module: the program may be elsewhere.
#include "actions/write_report/shipped_template.h"

#include "base/platform/library.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

QString ownFolder()
{
    return QCoreApplication::applicationDirPath() + u"/officeTemplates/"_s;
}

QString installedFolder()
{
    static const char anchor = 0;
    return platform::folderOfCode(&anchor) + u"/../../../share/corvanta/officeTemplates/"_s;
}

} // namespace

QString shippedTemplate(const QString &name)
{
    // A message names the folder of the program, where users expect the templates.
    const QString own = ownFolder() + name;
    const QString installed = installedFolder() + name;
    return !QFileInfo::exists(own) && QFileInfo::exists(installed) ? installed : own;
}

QStringList shippedTemplates()
{
    QStringList names =
        QDir(ownFolder()).entryList(QDir::Files) + QDir(installedFolder()).entryList(QDir::Files);
    // A program may have both folders, with the same files.
    names.removeDuplicates();
    names.sort();
    return names;
}

} // namespace corvanta
