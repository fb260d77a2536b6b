// What the tests of the editor's runs and data share: a temporary folder with a document, and
// waiting for what happens in the background.
#pragma once
#include "studio/document/graph_document.h"
#include "tests/support/graph_folder.h"

#include <QTest>

namespace corvanta::test {

/// Handles events until `isTrue`, at most as long as sanitizers need.
inline bool waitFor(const std::function<bool()> &isTrue)
{
    constexpr int kMaxMs = 20000;
    return QTest::qWaitFor(isTrue, kMaxMs);
}

/// A folder with test.graph, opened. `content` is what the graph element contains.
class StudioFolder : public GraphFolder
{
public:
    explicit StudioFolder(const QByteArray &content)
    {
        write(QStringLiteral("test.graph"), "<graph version='4.11'>" + content + "</graph>");
        auto opened = studio::GraphDocument::open(path(QStringLiteral("test.graph")), allActions());
        document = *std::move(opened);
    }

    std::unique_ptr<studio::GraphDocument> document;
};

/// A CSV file with the columns n, from 1 to `rows`, and name, of which each third is missing and
/// each fifth is empty.
inline QByteArray exampleCsv(int rows)
{
    QByteArray csv = "n,name\n";
    for (int i = 1; i <= rows; ++i) {
        const QByteArray number = QByteArray::number(i);
        csv += number + ',' + (i % 3 == 0 ? "" : i % 5 == 0 ? "\"\"" : "name " + number) + '\n';
    }
    return csv;
}

} // namespace corvanta::test
