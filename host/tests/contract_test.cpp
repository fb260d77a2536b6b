// Rows, parameters and files as actions see them.
#include "corvanta/corvanta_graph.h"
#include "corvanta/files.h"
#include "corvanta/name_collision.h"
#include "corvanta/target_file.h"
#include "test_actions.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sstream>

using namespace test;
using namespace Qt::StringLiterals;

TEST(RowBuffer, TextCellsOfEveryLengthCodeSizeAreAlignedAndComeBack)
{
    RowBuffer buffer(4096);
    for (const int n : {0, 1, 125, 126, 127, 16254, 16255, 2080766, 2080767}) {
        buffer.alloc(1); // whatever lay before
        const QString text(n, u'é');
        const auto *const fromQt = bytesFromQString(&buffer, text);
        const QByteArray utf8 = text.toUtf8();
        const auto *const fromUtf8 = textCellFromUtf8(&buffer, utf8.constData(), utf8.size());
        for (const auto *bytes : {fromQt, fromUtf8}) {
            EXPECT_EQ(qStringFromBytes(bytes), text) << n;
            EXPECT_EQ(reinterpret_cast<quintptr>(cell::readText(bytes).units) % 2, 0U) << n;
            EXPECT_EQ(cell::textCellBytes(bytes), cell::textCellBytes(n));
        }
    }
    EXPECT_TRUE(qStringFromBytes(bytesFromQString(&buffer, QString())).isNull());
    EXPECT_FALSE(qStringFromBytes(bytesFromQString(&buffer, u""_s)).isNull());
    buffer.deepReset(0);
    EXPECT_EQ(buffer.totalSizeAllocated(), 0);
}

TEST(OneRow, CellsOfEveryTypeAsTextAndNumber)
{
    RowBuffer buffer(4096);
    OneRow row;
    row.setColName({u"k"_s, u"f"_s, u"t"_s, u"n"_s, u"m"_s});
    row.setMetaType(0, MetaInfo(MetaInfo::Key, -1));
    row.setMetaType(1, MetaInfo(MetaInfo::Float, -1));
    row.setCol(0, keyCell(&buffer, 7));
    row.setCol(1, doubleCell(&buffer, 7.0));
    row.setCol(2, bytesFromQString(&buffer, u"\uFEFFx y"_s));
    row.setCol(3, bytesFromQString(&buffer, u"7"_s));
    row.setCol(4, cell::missingTextCell());
    const QStringList texts{u"7"_s, u"7"_s, u"\uFEFFx y"_s, u"7"_s, QString()};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(row.col(i, static_cast<unsigned short *>(nullptr)), texts[i]) << i;
        bool isNumber = true;
        const double value = row.colAsDouble(i, &isNumber);
        EXPECT_EQ(isNumber, i != 2 && i != 4) << i;
        EXPECT_TRUE(!isNumber || value == 7) << i;
        const unsigned key = row.colAsKey(i, &isNumber);
        EXPECT_TRUE(isNumber ? key == 7 : (i == 2 || i == 4)) << i;
    }
    EXPECT_EQ(row.colForHash(0), row.colForHash(1));
    row.setCol(1, doubleCell(&buffer, 4294967296.0));
    bool isKey = true;
    row.colAsKey(1, &isKey);
    EXPECT_FALSE(isKey) << "a double beyond 32 bits is not a key";
    EXPECT_EQ(row.getIndexOfColumn(u"t"_s), 2);
    EXPECT_EQ(row.getIndexOfColumn(u"T"_s), -1);
}

TEST(CorvantaGraph, ASavedDocumentReadsBackEqual)
{
    const auto graph = CorvantaGraph::parse("<graph version='4.5'><variable name='v' value='&lt;'/>"
                                            "<action id='a' y='2.5'><in b='&amp;'/></action>"
                                            "<action id='b' x='-1' comment='\"'><out/></action>"
                                            "<link from='a:1' to='b:2'/></graph>",
                                            u"g"_s);
    ASSERT_TRUE(graph);
    const QByteArray saved = graph->toXml();
    const auto again = CorvantaGraph::parse(saved, u"g"_s);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->toXml(), saved);
    EXPECT_EQ(again->version, 4.5);
    EXPECT_EQ(again->variables.value(u"v"_s), u"<"_s);
    ASSERT_EQ(again->actions.size(), 2);
    EXPECT_EQ(again->actions[0].y, 2.5);
    EXPECT_EQ(again->actions[1].x, -1);
    EXPECT_EQ(again->actions[1].comment, u"\""_s);
    EXPECT_EQ(again->links.value(0).to.pin, 2);
}

TEST(XmlNode, ConversionsOfForeignTextsAreDefined)
{
    EXPECT_EQ(xmltoi(u"12abc", 5), 12);
    EXPECT_EQ(xmltoi(nullptr, 5), 5);
    EXPECT_EQ(xmltoi(u"", 5), 0);
    EXPECT_EQ(xmltoi(u"99999999999999999999", 5), std::numeric_limits<int>::max());
    EXPECT_EQ(xmltol(u"-99999999999999999999", 5), std::numeric_limits<long long>::min());
    EXPECT_EQ(xmltol(u" \t\r7", 5), 7);
    EXPECT_EQ(xmltof(u"3.90", 1), 3.9);
    EXPECT_EQ(xmltof(u"1,5", 1), 1);
    EXPECT_FALSE(xmltob(u"0", 1));
    EXPECT_TRUE(xmltob(u"1", 0));
}

TEST(XmlNode, HostileValuesSurviveSavingAndDeepDocumentsAreRefused)
{
    const QString hostile = u"a'b\"c<d>e&f\ng\rh\ti ${x} é😀"_s;
    ToXMLStringTool tool;
    const QByteArray document =
        "<a v='" + QString::fromWCharArray(tool.toXML(hostile)).toUtf8() + "'><s>  x </s></a>";
    const auto node = XMLNode::parse(document);
    ASSERT_TRUE(node);
    EXPECT_EQ(xmltoa(node->getAttribute("v"), QString()), hostile);
    EXPECT_EQ(fromXMLSL(*node), QStringList{u"  x "_s});

    const QByteArray deep = QByteArray("<a>").repeated(5000) + QByteArray("</a>").repeated(5000);
    const auto tooDeep = XMLNode::parse(deep);
    ASSERT_FALSE(tooDeep);
    EXPECT_EQ(tooDeep.fault().detail, u"elements are nested too deeply"_s);
}

TEST(GlobalParameters, NamesAndVariables)
{
    GlobalParameters global;
    global.setGraphDir(u"/g/dir"_s);
    global.setOutDir(u"/o"_s);
    global.setVariable(u"v"_s, u"${graphDir}"_s);
    QStringList unknown;
    EXPECT_EQ(global.expandString(u"${v} ${nope} ${ $x"_s, &unknown),
              u"${graphDir} ${nope} ${ $x"_s);
    EXPECT_EQ(unknown, QStringList{u"nope"_s});
    EXPECT_EQ(global.expandFile(u"../a.csv"_s), u"/g/a.csv"_s);
    EXPECT_EQ(global.expandFile(u"/abs/a.csv"_s), u"/abs/a.csv"_s);
    EXPECT_EQ(global.expandOutputFile(u"a.csv"_s), u"/o/a.csv"_s);
    EXPECT_EQ(global.expandFile(QString()), QString());
    for (const char *name : {"/g/dir/sub/a.csv", "/g/dirx/a.csv", "/other/a"}) {
        const QString full = QString::fromLatin1(name);
        EXPECT_EQ(global.expandFile(global.contractFile(full)), full);
    }
    EXPECT_EQ(global.contractFile(u"/g/dir/sub/a.csv"_s), u"sub/a.csv"_s);
}

TEST(ParamTable, OnlyWhatDiffersIsSavedAndComesBack)
{
    Source source(XMLNode::emptyNode(), nullptr);
    std::wostringstream plain;
    source.save(plain, u"source"_s);
    EXPECT_EQ(plain.str(), L"<source version='1'/>\n");
    ASSERT_TRUE(source.setParameterValue(0, u"5"_s));
    ASSERT_TRUE(source.setParameterValue(1, u"a'b\n"_s));
    EXPECT_FALSE(source.setParameterValue(2, u"x"_s)) << "not a number";
    const std::unique_ptr<ActionItem> copy(source.clone(nullptr));
    std::wostringstream first;
    std::wostringstream second;
    source.save(first, u"source"_s);
    copy->save(second, u"source"_s);
    EXPECT_EQ(first.str(), L"<source version='1' rows='5' text='a&apos;b&#10;'/>\n");
    EXPECT_EQ(first.str(), second.str());
}

TEST(Files, PatternsMatchInNameOrderAndOnlyTheirLastPart)
{
    const QTemporaryDir dir;
    for (const char *name : {"b.csv", "a.csv", "a[1].csv", ".hidden.csv", "c.txt"}) {
        QFile(dir.filePath(QString::fromLatin1(name))).open(QIODevice::WriteOnly);
    }
    const auto expand = [&](const char *pattern) {
        QStringList names;
        listFiles(dir.filePath(QString::fromLatin1(pattern)), &names);
        for (QString &name : names) {
            name.remove(0, dir.path().size() + 1);
        }
        return names;
    };
    EXPECT_EQ(expand("?.csv"), (QStringList{u"a.csv"_s, u"b.csv"_s}));
    EXPECT_EQ(expand("a[1]*"), QStringList{u"a[1].csv"_s});
    EXPECT_EQ(expand("nothing*.csv"), QStringList{u"nothing*.csv"_s});
    EXPECT_EQ(expand("c.txt"), QStringList{u"c.txt"_s});
}

TEST(TargetFile, TheTargetChangesOnlyAtCommit)
{
    const QTemporaryDir dir;
    const QString name = dir.filePath(u"target"_s);
    {
        QFile old(name);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old");
    }
    QFile::setPermissions(name, QFile::ReadOwner | QFile::WriteOwner);
    const auto content = [&] {
        QFile file(name);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    };
    {
        TargetFile target;
        ASSERT_TRUE(target.open(name, {3}));
        EXPECT_TRUE(target.temporaryName().startsWith(name + u"_tmp_3_"_s));
        ASSERT_TRUE(target.write("new", 3));
        EXPECT_EQ(content(), "old");
    }
    EXPECT_EQ(content(), "old");
    // A link to a link to it, each of which stays one.
    const QString first = dir.filePath(u"first"_s);
    const QString second = dir.filePath(u"second"_s);
    ASSERT_TRUE(QFile::link(u"target"_s, second) && QFile::link(u"second"_s, first));
    TargetFile target;
    ASSERT_TRUE(target.open(first, {3}));
    ASSERT_TRUE(target.write("new", 3));
    ASSERT_TRUE(target.commit());
    EXPECT_EQ(content(), "new");
    EXPECT_TRUE(QFileInfo(first).isSymLink() && QFileInfo(second).isSymLink());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::NoSymLinks), QStringList{u"target"_s});
    EXPECT_EQ(QFile::permissions(name) & (QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());
    EXPECT_FALSE(TargetFile().open(dir.filePath(u"no/folder"_s), {}));
    // After a failed open() a device must not inherit the temporary name, which commit() would
    // rename.
    EXPECT_FALSE(target.open(dir.filePath(u"no/folder"_s), {}));
    ASSERT_TRUE(target.open(u"/dev/null"_s, {}));
    EXPECT_TRUE(target.temporaryName().isEmpty());
    EXPECT_TRUE(target.commit());
}
