// Where an Office document has its charts.
#pragma once
#include <QByteArray>
#include <QString>

namespace corvanta {

/// The folder of the chart parts in documents of this extension, with a "/" at its end; empty for
/// other files. The case of letters does not count.
QByteArray chartFolderOf(const QString &fileName);

} // namespace corvanta
