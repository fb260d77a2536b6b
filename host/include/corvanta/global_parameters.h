// corvanta/global_parameters.h
// What the actions of one graph share: folders, variables, the version that saved the graph.
#pragma once
#include "corvanta/export.h"

#include <QMap>
#include <QString>
#include <QStringList>

/// Threads: set up before a run, read-only while it runs.
class CORVANTA_EXPORT GlobalParameters
{
public:
    GlobalParameters();

    QString graphDir() const { return m_graphDir; }
    void setGraphDir(const QString &dir);
    /// Where relative output names go; the graph's folder unless set.
    QString outDir() const { return m_outDir.isEmpty() ? m_graphDir : m_outDir; }
    void setOutDir(const QString &dir);
    /// For scripts and scratch files of the host; made when first used.
    QString workingDir() const { return m_workingDir; }
    void setWorkingDir(const QString &dir);
    /// Where input names are looked up, where output names go, and a third folder for graphs that
    /// use one; the first two are graphDir and outDir unless set.
    QString dataDirRead() const { return m_dataDirRead.isEmpty() ? graphDir() : m_dataDirRead; }
    void setDataDirRead(const QString &dir) { m_dataDirRead = dir; }
    QString dataDirWrite() const { return m_dataDirWrite.isEmpty() ? outDir() : m_dataDirWrite; }
    void setDataDirWrite(const QString &dir) { m_dataDirWrite = dir; }
    QString otherDir() const { return m_otherDir; }
    void setOtherDir(const QString &dir) { m_otherDir = dir; }

    /// Version of the host that saved the graph; infinite for a graph that names none (it is new).
    double graphVersion() const { return m_graphVersion; }
    void setGraphVersion(double version) { m_graphVersion = version; }

    /// How packages are compressed: "isal-2", "isal-3", "zlib-1" to "zlib-9". Empty: the fast
    /// default.
    QString compression() const { return m_compression; }
    void setCompression(const QString &level) { m_compression = level; }

    void setVariable(const QString &name, const QString &value);
    /// The value of a graph variable or of a built-in one (graphDir, outDir, workingDir); null when
    /// there is none.
    QString variable(const QString &name) const;
    /// `text` with every `${NAME}` replaced by its value. Values are not expanded again; an unknown
    /// name stays as it stands and is added to `unknown` when given.
    QString expandString(const QString &text, QStringList *unknown = nullptr) const;

    /// The name to open for a saved input name: variables replaced, relative names put under
    /// dataDirRead, "." and ".." resolved.
    QString expandFile(const QString &name) const;
    /// The same for a file to be written, under dataDirWrite.
    QString expandOutputFile(const QString &name) const;
    /// The name to save for a file: relative to the graph's folder when it lies below it. The
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
