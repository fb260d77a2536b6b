// The example graphs that come with the program.
#pragma once
#include <QString>
#include <QVector>

namespace corvanta::studio {

struct Example
{
    QString fileName; ///< absolute
    QString title;    ///< "documents/letters"
    QString meaning;  ///< what it shows: the first comment of the file, translated
};

/// Folder of the examples: ../share/corvanta/examples relative to the folder of the program.
QString examplesFolder();

/// All graphs in `folder` and its folders; the one of the folder itself first. Reads only the
/// beginning of each file.
QVector<Example> findExamples(const QString &folder);

} // namespace corvanta::studio
