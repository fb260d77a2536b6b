// Where the templates are that belong to the application.
#pragma once
#include <QString>
#include <QStringList>

namespace corvanta {

/// The file `name` in the folder officeTemplates of the application's folder, or of its shared
/// data: ../share/corvanta/officeTemplates, where an installation has them. If neither has the
/// file, its name in the application's folder. Opens no file.
QString shippedTemplate(const QString &name);
/// The names of all files in these folders, sorted.
QStringList shippedTemplates();

} // namespace corvanta
