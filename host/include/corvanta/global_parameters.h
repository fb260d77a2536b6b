// What the actions of one graph share: folders, variables, the version of the saved graph.
//
// All folders are absolute after their set function; a relative argument is relative to the current
// folder of the process.
#pragma once
#include "corvanta/export.h"

#include <QMap>
#include <QString>
#include <QStringList>

/// Threads: changed only before a run; any thread may read it during the run.
class CORVANTA_EXPORT GlobalParameters
{
public:
    GlobalParameters();

    /// Absolute folder of the graph file; the current folder unless set.
    QString graphDir() const { return m_graphDir; }
    void setGraphDir(const QString &dir);
    /// Folder of relative output names; the graph's folder unless set.
    QString outDir() const { return m_outDir.isEmpty() ? m_graphDir : m_outDir; }
    void setOutDir(const QString &dir);
    /// Folder for scripts and scratch files of the host, which need not exist yet.
    QString workingDir() const { return m_workingDir; }
    void setWorkingDir(const QString &dir);
    /// Folders of relative input names, of relative output names, and a third one for graphs that
    /// use it. The first two are graphDir and outDir unless set.
    QString dataDirRead() const { return m_dataDirRead.isEmpty() ? graphDir() : m_dataDirRead; }
    void setDataDirRead(const QString &dir) { m_dataDirRead = dir; }
    QString dataDirWrite() const { return m_dataDirWrite.isEmpty() ? outDir() : m_dataDirWrite; }
    void setDataDirWrite(const QString &dir) { m_dataDirWrite = dir; }
    QString otherDir() const { return m_otherDir; }
    void setOtherDir(const QString &dir) { m_otherDir = dir; }

    /// Version of the host that saved the graph; infinite for a graph without a version, which
    /// counts as new.
    double graphVersion() const { return m_graphVersion; }
    void setGraphVersion(double version) { m_graphVersion = version; }

    /// Compression of packages: "isal-2", "isal-3", "zlib-1" to "zlib-9"; empty for the fast
    /// default.
    QString compression() const { return m_compression; }
    void setCompression(const QString &level) { m_compression = level; }

    /// Define or replace a variable; `name` is without "${" and "}". A null value is an empty text.
    void setVariable(const QString &name, const QString &value);
    /// The value of a graph variable or of a built-in one (graphDir, outDir, workingDir); null if
    /// there is none of that name.
    QString variable(const QString &name) const;
    /// `text` with every `${NAME}` replaced by its value. Values are not expanded again. An unknown
    /// `${NAME}` is kept unchanged, and NAME is added to `unknown` unless that is null.
    QString expandString(const QString &text, QStringList *unknown = nullptr) const;

    /// The name to open for a saved input name: variables are replaced, relative names are relative
    /// to dataDirRead, "." and ".." are resolved.
    QString expandFile(const QString &name) const;
    /// The same for a file to write; relative names are relative to dataDirWrite.
    QString expandOutputFile(const QString &name) const;
    /// The name to save for a file: relative to the graph's folder if the file is below it. The
    /// inverse of expandFile() for names without variables.
    QString contractFile(const QString &name) const;

private:
    QString m_graphDir;
    QString m_outDir;
    QString m_workingDir;
    QString m_dataDirRead;
    QString m_dataDirWrite;
    QString m_otherDir;
    double m_graphVersion;
    QString m_compression;
    QMap<QString, QString> m_variables;
};
