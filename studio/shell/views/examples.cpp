// Finds the examples by their files, so that a new example needs no entry in a list.
#include "studio/shell/views/examples.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The comment before the document element, in one line.
QString firstComment(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QXmlStreamReader xml(&file);
    // Comments inside the graph are about its parts.
    while (!xml.atEnd() && !xml.isStartElement()) {
        xml.readNext();
        if (xml.isComment()) {
            return xml.text().toString().simplified();
        }
    }
    return {};
}

} // namespace

QString examplesFolder()
{
    // Relative to the program, so that an installation can be moved.
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           u"/../share/corvanta/examples"_s);
}

QVector<Example> findExamples(const QString &folder)
{
    QStringList files;
    QDirIterator found(folder, {u"*.graph"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        files << found.next();
    }
    // Single files before those in folders.
    std::sort(files.begin(), files.end(), [](const QString &a, const QString &b) {
        return std::pair(a.count(u'/'), a) < std::pair(b.count(u'/'), b);
    });
    QVector<Example> examples;
    examples.reserve(files.size());
    for (const QString &file : files) {
        const QString name = QDir(folder).relativeFilePath(file);
        const QByteArray meaning = firstComment(file).toUtf8();
        examples.push_back(
            {file, name.chopped(6), QCoreApplication::translate("Examples", meaning)});
    }
    return examples;
}

} // namespace corvanta::studio
