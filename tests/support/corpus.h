// The corpus of real files, for tests that want more than samples of their own.
#pragma once
#include <QDir>
#include <QFile>
#include <QString>

#include <gtest/gtest.h>

namespace corvanta::test {

/// The corpus' folder: $CORVANTA_CORPUS, else ../shared/corpus next to the project; empty without
/// one.
inline QString corpusDir()
{
    QString dir = qEnvironmentVariable("CORVANTA_CORPUS");
    if (dir.isEmpty()) {
        dir = QStringLiteral(CORVANTA_SOURCE_DIR "/../shared/corpus");
    }
    return QDir(dir).exists() ? QDir(dir).absolutePath() : QString();
}

inline QString corpusFile(const QString &name)
{
    return corpusDir() + QLatin1Char('/') + name;
}

} // namespace corvanta::test

/// Skip the test, visibly, where the corpus is not there.
#define CORVANTA_NEEDS_CORPUS()                                                                    \
    if (corvanta::test::corpusDir().isEmpty())                                                     \
    GTEST_SKIP() << "no corpus: set CORVANTA_CORPUS"
