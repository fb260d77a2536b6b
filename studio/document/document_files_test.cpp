// The files of a document: saving, other programs that change them, and sessions that were killed.
#include "studio/document/document_file.h"
#include "tests/studio/document_case.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;

TEST_F(StudioDocument, SavesWithUndoAndNoticesOtherPrograms)
{
    const auto document = open(kGraph);
    QSignalSpy modified(document.get(), &GraphDocument::modifiedChanged);
    document->move({{u"in"_s, {30, 40}}});
    EXPECT_TRUE(document->isModified());
    ASSERT_TRUE(document->save());
    EXPECT_EQ(fileBytes(document->fileName()), document->toXml());
    EXPECT_FALSE(document->isModified());
    document->undoStack()->undo();
    EXPECT_TRUE(document->isModified());
    EXPECT_FALSE(document->hasChangedOnDisk());
    QSignalSpy changed(document.get(), &GraphDocument::changedOnDisk);
    QFile::remove(document->fileName());
    write(u"test.graph"_s, kGraph);
    EXPECT_TRUE(changed.wait(kTimeoutMs));
    EXPECT_TRUE(document->hasChangedOnDisk());
    document->keepContent();
    EXPECT_TRUE(document->isModified());
    EXPECT_FALSE(document->hasChangedOnDisk());
    QFile::remove(document->fileName());
    EXPECT_TRUE(document->hasChangedOnDisk());
    document->keepContent();
    write(u"test.graph"_s, kGraph); // it came back
    EXPECT_TRUE(document->hasChangedOnDisk());
    ASSERT_TRUE(document->reload());
    EXPECT_FALSE(document->isModified());
    EXPECT_EQ(document->undoStack()->count(), 0);
    const auto failed = document->saveAs(m_folder.filePath(u"none/x.graph"_s));
    ASSERT_FALSE(failed);
    EXPECT_TRUE(failed.fault().detail.contains("cannot be written"_L1));
    EXPECT_EQ(document->title(), "test.graph"_L1);
    EXPECT_EQ(document->toXml(), kGraph); // its inputs are still those of its folder
}

TEST_F(StudioDocument, SaveAsKeepsTheMeaningOfRelativeNames)
{
    const auto document = open(kGraph);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(u"other"_s));
    ASSERT_TRUE(document->saveAs(m_folder.filePath(u"other/copy.graph"_s)));
    const QString text = QString::fromUtf8(fileBytes(document->fileName()));
    EXPECT_TRUE(text.contains(u"fileName='%1'"_s.arg(m_folder.filePath(u"a.csv"_s))) &&
                text.contains("fileName='b.csv'"_L1))
        << text.toStdString();
    EXPECT_FALSE(document->isModified());
    // A graph without a file has the current folder.
    const QString current = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(m_folder.path()));
    GraphDocument fresh(test::allActions());
    fresh.addDataFile(write(u"new.csv"_s, "a\n"), {});
    ASSERT_TRUE(fresh.saveAs(m_folder.filePath(u"other/new.graph"_s)));
    EXPECT_TRUE(fresh.toXml().contains(m_folder.filePath(u"new.csv"_s).toUtf8()))
        << fresh.toXml().toStdString();
    QDir::setCurrent(current);
}

TEST_F(StudioDocument, AKilledSessionIsRecovered)
{
    auto document = open(kGraph);
    document->setComment(u"in"_s, u"unsaved"_s);
    const QByteArray text = document->toXml();
    ASSERT_TRUE(QTest::qWaitFor([] { return !QDir(DocumentFile::recoveryFolder()).isEmpty(); },
                                kTimeoutMs));
    EXPECT_TRUE(GraphDocument::recoveries().isEmpty()); // its session is running
    // A kill leaves the files, and a lock of a process that does not exist.
    const QString folder = DocumentFile::recoveryFolder();
    const QString name = QDir(folder).entryList({u"*.recovery"_s}).value(0);
    const QByteArray saved = fileBytes(folder + u'/' + name);
    const QString original = document->fileName();
    document.reset();
    EXPECT_TRUE(QDir(folder).entryList({u"*.recovery"_s}).isEmpty());
    QFile left(folder + u'/' + name);
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.write(saved);
    left.close();
    const auto found = GraphDocument::recoveries();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].original, original);
    const auto recovered = GraphDocument::recover(found[0], test::allActions());
    ASSERT_TRUE(recovered);
    EXPECT_EQ((*recovered)->toXml(), text);
    EXPECT_TRUE((*recovered)->isModified());
    EXPECT_FALSE((*recovered)->hasChangedOnDisk());
    EXPECT_TRUE(GraphDocument::recoveries().isEmpty());
    ASSERT_TRUE((*recovered)->reload());
    EXPECT_FALSE((*recovered)->isModified());
    EXPECT_TRUE(QDir(folder).entryList({u"*.recovery"_s}).isEmpty()); // the user has discarded it
    // A program has changed the original since.
    write(u"test.graph"_s, "<graph/>");
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.write(saved);
    left.close();
    const auto later = GraphDocument::recover(found[0], test::allActions());
    ASSERT_TRUE(later);
    QSignalSpy changed(later->get(), &GraphDocument::changedOnDisk);
    EXPECT_TRUE(changed.wait(kTimeoutMs));
}

TEST_F(StudioDocument, ARecoveryFileStaysUntilThereIsANewOne)
{
    const QString left = write(u"left.recovery"_s, "{}\n<graph/>\n");
    const QString folder = DocumentFile::recoveryFolder();
    ASSERT_TRUE(QDir().mkpath(folder)); // also the folder above it
    QDir(folder).removeRecursively();
    QFile inTheWay(folder); // no file can be written to a folder of that name
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_TRUE(GraphDocument::recover({left, {}, {}}, test::allActions()));
    EXPECT_TRUE(QFile::exists(left));
    ASSERT_TRUE(inTheWay.remove());
    EXPECT_TRUE(GraphDocument::recover({left, {}, {}}, test::allActions()));
    EXPECT_FALSE(QFile::exists(left));
}
