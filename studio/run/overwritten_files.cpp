// The names come from the parameters of the actions, as with "corvanta check --list-outputs". A
// file that a run extends or updates counts too, because the run changes it.
#include "studio/run/overwritten_files.h"

#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr qsizetype kShownFiles = 10; // in the text of the question

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::studio::OverwriteQuestion)
};

/// Whether only the folder is known. Its other files, such as the inputs, are no targets.
bool isAnyFile(const QString &name)
{
    return name.endsWith("/*"_L1) && !QFileInfo(name).isFile();
}

/// The files of a name in which "*" is what depends on the rows; of "FOLDER/*" itself.
QStringList filesOf(const QString &name)
{
    if (isAnyFile(name)) {
        const bool hasFiles = !QDir(QFileInfo(name).path()).isEmpty(QDir::Files | QDir::Hidden);
        return hasFiles ? QStringList{name} : QStringList();
    }
    QStringList files{name};
    if (!QFileInfo(name).isFile() && name.contains(u'*')) {
        listFiles(name, &files);
    }
    files.removeIf([](const QString &file) { return !QFileInfo(file).isFile(); });
    return files;
}

} // namespace

QStringList existingTargets(const CorvantaGraph &graph, const ActionRegistry &registry)
{
    if (!graph.validate(registry, {}).isEmpty()) {
        return {};
    }
    QStringList files;
    const QStringList names = graph.outputs(registry, {}, QString());
    for (const QString &name : names) {
        files += filesOf(name);
    }
    files.removeDuplicates();
    // First, so that a long list of files does not hide them.
    std::stable_partition(files.begin(), files.end(), isAnyFile);
    return files;
}

/// A long list is cut; the details of the box have all of it.
bool askToOverwrite(QWidget *parent, const QStringList &files)
{
    QStringList lines;
    qsizetype known = 0;
    for (const QString &file : files) {
        const bool isAny = isAnyFile(file);
        lines
            << (isAny
                    ? Texts::tr("Files in %1, with names from the rows").arg(QFileInfo(file).path())
                    : file);
        known += isAny ? 0 : 1;
    }
    const bool isLong = lines.size() > kShownFiles;
    QMessageBox box(
        QMessageBox::Warning, Texts::tr("Overwrite files"),
        known == 0 ? Texts::tr("The run may replace existing files.")
                   : Texts::tr("The run replaces or changes existing files. Files: %1").arg(known),
        QMessageBox::Cancel, parent);
    box.setObjectName(u"overwriteQuestion"_s);
    box.setTextFormat(Qt::PlainText); // names may contain what looks like markup
    box.setInformativeText(lines.mid(0, kShownFiles).join(u'\n') +
                           (isLong ? u"\n\u2026"_s : u""_s));
    if (isLong) {
        box.setDetailedText(lines.join(u'\n'));
    }
    // Enter must not overwrite what the user has not read about.
    const QPushButton *const run = box.addButton(Texts::tr("Run"), QMessageBox::AcceptRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == run;
}

} // namespace corvanta::studio
