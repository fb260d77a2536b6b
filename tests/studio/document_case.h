// A graph document in a temporary folder.
//
// For the tests of documents. Threads: the GUI thread.
#pragma once
#include "studio/document/graph_document.h"
#include "tests/support/graph_folder.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace corvanta::studio {

using namespace Qt::StringLiterals;

/// Null if a graph could not be opened.
using DocumentPtr = std::unique_ptr<GraphDocument>;

/// For what happens in the background.
inline constexpr int kTimeoutMs = 20000;

/// The content of a file; empty if it cannot be read.
inline QByteArray fileBytes(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A document in a temporary folder.
class StudioDocument : public testing::Test
{
protected:
    QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    DocumentPtr open(const QByteArray &text) const
    {
        auto opened = GraphDocument::open(write(u"test.graph"_s, text), test::allActions());
        EXPECT_TRUE(opened) << (opened ? "" : opened.fault().detail.toStdString());
        return opened ? std::move(*opened) : nullptr;
    }
    QTemporaryDir m_folder;
};

/// Comments, odd attributes and elements that the editor does not know.
inline constexpr char kGraph[] = "<?xml version='1.0'?>\n"
                                 "<!-- monthly -->\n"
                                 "<graph version='4.11' owner=\"me\">\n"
                                 "  <variable name=\"year\" value='2024'/> <!-- of the data -->\n"
                                 "  <action id='in' x='10.4' y=\"20\" color='red'>\n"
                                 "    <!-- input --><readCSV fileName='a.csv' odd='1'/>\n"
                                 "  </action>\n"
                                 "  <future kind='note'>\n    <p>keep me</p></future>\n"
                                 "  <action id='out'><writeCSV fileName='b.csv'/></action>\n"
                                 "  <link from='in:0' to='out:0'/>\n"
                                 "  <!-- end -->\n"
                                 "</graph>\n<!-- after -->\n";

} // namespace corvanta::studio
