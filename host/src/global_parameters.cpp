// Folders, variables and the expansion of names.
#include "corvanta/global_parameters.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// `name` as an absolute, clean path; relative names are relative to `dir`.
QString under(const QString &dir, const QString &name)
{
    // An empty name means "no file" and must not become the folder.
    if (name.isEmpty()) {
        return name;
    }
    return QDir::cleanPath(QDir(dir).absoluteFilePath(name));
}

} // namespace

GlobalParameters::GlobalParameters()
    : m_graphDir(QDir::currentPath())
    , m_workingDir(QStandardPaths::writableLocation(QStandardPaths::TempLocation) + "/corvanta"_L1)
    , m_graphVersion(std::numeric_limits<double>::infinity())
{
}

void GlobalParameters::setGraphDir(const QString &dir)
{
    m_graphDir = QDir::cleanPath(QDir::current().absoluteFilePath(dir));
}

void GlobalParameters::setOutDir(const QString &dir)
{
    // Empty is not the current folder but "not set", see outDir().
    m_outDir = dir.isEmpty() ? QString() : QDir::cleanPath(QDir::current().absoluteFilePath(dir));
}

void GlobalParameters::setWorkingDir(const QString &dir)
{
    m_workingDir = QDir::cleanPath(QDir::current().absoluteFilePath(dir));
}

void GlobalParameters::setVariable(const QString &name, const QString &value)
{
    m_variables.insert(name, value);
}

QString GlobalParameters::variable(const QString &name) const
{
    // A graph may define a variable with the name of a built-in one.
    const auto found = m_variables.constFind(name);
    if (found != m_variables.constEnd()) {
        return found->isNull() ? u""_s : *found; // null means "unknown" to the caller
    }
    if (name == "graphDir"_L1) {
        return graphDir();
    }
    if (name == "outDir"_L1) {
        return outDir();
    }
    return name == "workingDir"_L1 ? workingDir() : QString();
}

QString GlobalParameters::expandString(const QString &text, QStringList *unknown) const
{
    QString result;
    qsizetype at = 0;
    for (;;) {
        const qsizetype begin = text.indexOf("${"_L1, at);
        const qsizetype end = begin < 0 ? -1 : text.indexOf(u'}', begin);
        if (end < 0) {
            return result += QStringView(text).mid(at);
        }
        const QString name = text.mid(begin + 2, end - begin - 2);
        const QString value = variable(name);
        // Kept unchanged, so that a file name that only looks like a variable still works.
        if (value.isNull() && unknown != nullptr) {
            *unknown << name;
        }
        result += QStringView(text).mid(at, begin - at);
        result += value.isNull() ? text.mid(begin, end + 1 - begin) : value;
        at = end + 1;
    }
}

QString GlobalParameters::expandFile(const QString &name) const
{
    return under(dataDirRead(), expandString(name));
}

QString GlobalParameters::expandOutputFile(const QString &name) const
{
    return under(dataDirWrite(), expandString(name));
}

/// Graphs that are moved with their files keep working with relative names.
QString GlobalParameters::contractFile(const QString &name) const
{
    // A name with a variable is already portable.
    if (!QDir::isAbsolutePath(name) || name.contains("${"_L1)) {
        return name;
    }
    // On another drive the "relative" name is absolute.
    const QString relative = QDir(m_graphDir).relativeFilePath(name);
    return relative.startsWith("../"_L1) || QDir::isAbsolutePath(relative) ? name : relative;
}
