// Templates lie beside the program in a build folder, and below share/ in an installation.
#include "actions/write_report/shipped_template.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvanta {

QString shippedTemplate(const QString &name)
{
    const QString folder = QCoreApplication::applicationDirPath();
    const QString own = folder + u"/officeTemplates/"_s + name;
    const QString installed = folder + u"/../share/corvanta/officeTemplates/"_s + name;
    return !QFileInfo::exists(own) && QFileInfo::exists(installed) ? installed : own;
}

} // namespace corvanta
