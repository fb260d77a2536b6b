// Rows, parameters and files as actions see them.
#include "corvanta/corvanta_graph.h"
#include "corvanta/files.h"
#include "corvanta/lists.h"
#include "corvanta/name_collision.h"
#include "corvanta/target_file.h"
#include "test_actions.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <random>
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
    row.setCol(0, cell::missingKeyCell());
    EXPECT_TRUE(cell::isMissingDouble(row.colAsDouble(0, &isKey)));
    EXPECT_FALSE(isKey);
    EXPECT_EQ(row.getIndexOfColumn(u"t"_s), 2);
    EXPECT_EQ(row.getIndexOfColumn(u"T"_s), -1);
}

/// Rows of a run share the cells of their batch; those of an action without one must do the same.
TEST(OneRow, ACopyKeepsItsCellsAndColumns)
{
    RowBuffer buffer(4096);
    OneRow row;
    row.setColName({u"a"_s, u"b"_s});
    row.setMetaData({MetaInfo(MetaInfo::Key, -1), MetaInfo(MetaInfo::Unknown, -1)});
    row.setCol(0, keyCell(&buffer, 7));
    row.setCol(1, bytesFromQString(&buffer, u"x"_s));
    OneRow copy;
    copy.copyFrom(&row);
    row.setCol(0, keyCell(&buffer, 8));
    row.setColName(0, u"other"_s);
    EXPECT_EQ(copy.colAsKey(0, nullptr), 7U);
    EXPECT_EQ(copy.getColNamesDeep(), (QVector<QString>{u"a"_s, u"b"_s}));
    // More columns, and fewer, keep the others.
    copy.setNumberOfColumns(3);
    EXPECT_EQ(copy.colAsKey(0, nullptr), 7U);
    EXPECT_EQ(copy.text(1), u"x"_s);
    EXPECT_EQ(copy.getMetaType(2).type(), MetaInfo::Unknown);
    EXPECT_EQ(copy.colName(2), QString());
    copy.setNumberOfColumns(1);
    EXPECT_EQ(copy.numberOfColumns(), 1);
    EXPECT_EQ(copy.colAsKey(0, nullptr), 7U);
    EXPECT_EQ(copy.getMetaType(0).type(), MetaInfo::Key);
    copy.setMetaData({MetaInfo(MetaInfo::Float, -1), MetaInfo(MetaInfo::Key, -1)});
    EXPECT_EQ(copy.getMetaDataDeep().size(), 2);
    EXPECT_EQ(copy.getColNamesDeep(), (QVector<QString>{u"a"_s, QString()}));
    copy.copySchemaFrom(&row);
    EXPECT_EQ(copy.colName(0), u"other"_s);
    EXPECT_EQ(copy.getAllColForWrite()[0], nullptr) << "all cells are missing";
    EXPECT_EQ(copy.getAllColForWrite()[1], nullptr);
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

TEST(XmlNode, FlagsAndNumbersInEveryForm)
{
    for (const char16_t *off : {u"", u" ", u"0", u"false", u" No ", u"FALSE"}) {
        EXPECT_FALSE(xmltob(off, 1)) << QString::fromUtf16(off).toStdString();
    }
    for (const char16_t *on : {u"1", u"true", u"yes", u"2", u"-1", u"on", u"00"}) {
        EXPECT_TRUE(xmltob(on, 0)) << QString::fromUtf16(on).toStdString();
    }
    EXPECT_TRUE(xmltob(nullptr, 1));
    const std::pair<const char16_t *, long long> numbers[] = {
        {u"+7", 7},
        {u"-7", -7},
        {u"\v\f\n 7", 7},
        {u"- 7", 0},
        {u"7.9", 7},
        {u"0x10", 0},
        {u"9223372036854775807", 9223372036854775807LL},
        {u"--7", 0},
        {u"-0", 0},
        {u"\u0667", 0},
    };
    for (const auto &[text, value] : numbers) {
        EXPECT_EQ(xmltol(text, 5), value) << QString::fromUtf16(text).toStdString();
    }
    EXPECT_EQ(xmltoi(u"-2147483649", 5), std::numeric_limits<int>::min());
    EXPECT_EQ(xmltof(u" -1.5e2x", 1), -150);
    EXPECT_EQ(xmltof(u"x", 1), 0);
    EXPECT_EQ(xmltof(nullptr, 1), 1);
}

TEST(XmlNode, ChildrenAndTextsAreFoundInOrder)
{
    const auto node = XMLNode::parse("<a x='1' y=''>one<!-- c -->two<b i='0'/>three<c/>\n"
                                     "<b\n i='1'/><![CDATA[<]]>&amp;</a>");
    ASSERT_TRUE(node);
    EXPECT_EQ(node->attributeNames(), (QStringList{u"x"_s, u"y"_s}));
    EXPECT_EQ(node->getAttribute("z"), nullptr);
    EXPECT_STREQ(QString::fromUtf16(node->getAttribute("y")).toLatin1().constData(), "");
    // A child element ends a run of text, a comment does not.
    EXPECT_EQ(QString::fromUtf16(node->getText(0)), u"onetwo"_s);
    EXPECT_EQ(QString::fromUtf16(node->getText(1)), u"three"_s);
    EXPECT_EQ(QString::fromUtf16(node->getText(3)), u"<&"_s);
    EXPECT_EQ(node->getText(4), nullptr);
    EXPECT_EQ(node->getText(-1), nullptr);
    EXPECT_EQ(node->text(), u"onetwothree\n<&"_s);
    int index = 0;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(xmltoi(node->getChildNode("b", &index).getAttribute("i"), -1), i);
    }
    EXPECT_EQ(index, 3);
    EXPECT_TRUE(node->getChildNode("b", &index).isEmpty());
    EXPECT_EQ(index, 3) << "unchanged, so that a loop ends";
    EXPECT_EQ(node->getChildNode("b").line(), 1);
    EXPECT_EQ(node->getChildNode(2).line(), 2);
    EXPECT_TRUE(node->getChildNode(3).isEmpty() && node->getChildNode(-1).isEmpty());
    EXPECT_EQ(XMLNode().nChildNode(), 0);
    EXPECT_EQ(XMLNode().getAttribute("x"), nullptr);
    EXPECT_TRUE(XMLNode().text().isNull());
}

TEST(XmlNode, ListsOfTextsComeBack)
{
    const QStringList list{u"a"_s, QString(), u" b\n"_s, u"<&>'\""_s, u"\t\r"_s};
    std::wostringstream out;
    toXML(list, out);
    const auto node = XMLNode::parse("<p>" + QString::fromStdWString(out.str()).toUtf8() +
                                     "<other>x</other></p>");
    ASSERT_TRUE(node);
    EXPECT_EQ(fromXMLSL(*node), list);
}

TEST(Lists, TextsAreQuotedUpToALimitAndValuesMoveWithTheirKeys)
{
    const QStringList three{u"a"_s, u"b"_s, u"c"_s};
    EXPECT_EQ(stringFromStringList(three, 3), u"'a', 'b', 'c'"_s);
    EXPECT_EQ(stringFromStringList(three, 2), u"'a', 'b', ..."_s);
    EXPECT_EQ(stringFromStringList({}, 2), QString());
    EXPECT_EQ(wordsOf(" a  bc "), (QStringList{u"a"_s, u"bc"_s}));
    int keys[] = {9, 3, 1, 3, 2, 0};
    int values[] = {0, 1, 2, 3, 4, 5};
    sortIntInt(keys, values, 1, 4);
    EXPECT_EQ(std::vector<int>(keys, keys + 6), (std::vector<int>{9, 1, 2, 3, 3, 0}));
    EXPECT_EQ(std::vector<int>(values, values + 6), (std::vector<int>{0, 2, 4, 1, 3, 5}));
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
    EXPECT_EQ(global.contractFile(u"/g/dir/${v}/a"_s), u"/g/dir/${v}/a"_s);
}

TEST(GlobalParameters, BuiltInVariablesHaveValuesAndCanBeReplaced)
{
    GlobalParameters global;
    global.setGraphDir(u"/g"_s);
    global.setWorkingDir(u"/w/x/.."_s);
    QStringList unknown;
    EXPECT_EQ(global.expandString(u"${graphDir}|${outDir}|${workingDir}"_s, &unknown),
              u"/g|/g|/w"_s);
    EXPECT_EQ(global.expandOutputFile(u"a"_s), u"/g/a"_s) << "next to the graph";
    global.setOutDir(u"/o"_s);
    EXPECT_EQ(global.expandString(u"${outDir}"_s), u"/o"_s);
    EXPECT_EQ(global.expandFile(u"a"_s), u"/g/a"_s);
    global.setOutDir(QString());
    EXPECT_EQ(global.expandOutputFile(u"a"_s), u"/g/a"_s);
    global.setVariable(u"outDir"_s, u"/mine"_s);
    global.setVariable(u"none"_s, QString());
    EXPECT_EQ(global.expandString(u"a${outDir}${none}b${}"_s, &unknown), u"a/mineb${}"_s);
    EXPECT_EQ(unknown, QStringList{QString()}) << "an empty value is one";
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

/// Readers of packages on network drives read through it.
TEST(Files, ACacheGivesTheBytesOfTheFile)
{
    const QTemporaryDir dir;
    const QString name = dir.filePath(u"file"_s);
    QByteArray content;
    for (int i = 0; i < 1000; ++i) {
        content += static_cast<char>(i % 251);
    }
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    std::mt19937 random(5);
    for (const int cacheBytes : {0, 1, 7, 64, 1000, 5000}) {
        MyReadFileCached cached(MyReadFile::newMyReadFile(nullptr, name, false, true), cacheBytes);
        EXPECT_EQ(cached.size(), content.size());
        EXPECT_FALSE(cached.seek(-1));
        QByteArray bytes(200, '\0');
        for (int i = 0; i < 200; ++i) {
            if (i % 3 != 0) { // else the next bytes
                ASSERT_TRUE(cached.seek(random() % 1010));
            }
            const qint64 at = cached.position();
            const qint64 got = corvanta::readFully(cached, bytes.data(), random() % 200);
            ASSERT_GE(got, 0);
            ASSERT_EQ(bytes.first(got), content.mid(at, got)) << cacheBytes << ' ' << at;
            ASSERT_EQ(cached.position(), at + got);
        }
        ASSERT_TRUE(cached.seek(content.size()));
        EXPECT_EQ(cached.read(bytes.data(), 10), 0);
    }
}

TEST(Files, NamesOfTemporaryFilesFitTheFileSystem)
{
    EXPECT_EQ(withSuffix(u"/a/b.xlsx"_s, u"_tmp_1"_s), u"/a/b.xlsx_tmp_1"_s);
    EXPECT_EQ(withSuffix(u"/a/"_s + QString(255, u'x'), u"_TMP"_s),
              u"/a/"_s + QString(251, u'x') + u"_TMP"_s);
    // Whole characters are cut, of which some have several bytes.
    const QString wide = withSuffix(u"/a/"_s + u"\U0001F600"_s.repeated(100), u"_1"_s);
    EXPECT_EQ(wide, u"/a/"_s + u"\U0001F600"_s.repeated(63) + u"_1"_s);
    for (const auto &[name, expected] : {std::pair(u"a"_s, u"a.csv"_s),
                                         {u"a.txt"_s, u"a.txt"_s},
                                         {u"d.x/a"_s, u"d.x/a.csv"_s},
                                         {QString(), QString()}}) {
        QString extended = name;
        addExtentionIfRequired(&extended, u"csv"_s);
        EXPECT_EQ(extended, expected);
    }
}

TEST(Files, WritesContinueAfterTheKeptBytes)
{
    using Existing = MyWriteFile::Existing;
    const QTemporaryDir dir;
    const QString name = dir.filePath(u"file"_s);
    const auto write = [&](Existing existing, const auto &work) {
        auto file = MyWriteFile::open(name, existing);
        ASSERT_TRUE(file);
        work(**file);
        EXPECT_TRUE((*file)->sync() && (*file)->close());
    };
    const auto content = [&] {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    };
    EXPECT_EQ(KobiFileInfo(nullptr, name).size(), -1);
    write(Existing::Refuse, [](MyWriteFile &file) { EXPECT_TRUE(file.write("12345", 5)); });
    EXPECT_EQ(MyWriteFile::open(name, Existing::Refuse).fault().code.number, EEXIST);
    write(Existing::Append, [](MyWriteFile &file) {
        EXPECT_EQ(file.position(), 5);
        EXPECT_TRUE(file.write("678", 3) && file.seek(1) && file.position() == 1);
    });
    EXPECT_EQ(content(), "12345678");
    EXPECT_EQ(KobiFileInfo(nullptr, name).size(), 8);
    EXPECT_EQ(KobiFileInfo(nullptr, name).getParentDir(), dir.path());
    EXPECT_EQ(KobiFileInfo(nullptr, dir.path()).size(), -1);
    write(Existing::Append, [](MyWriteFile &file) {
        EXPECT_TRUE(file.truncate(3) && file.position() == 3 && file.write("x", 1));
        EXPECT_FALSE(file.seek(-1));
        EXPECT_EQ(file.position(), 4);
    });
    EXPECT_EQ(content(), "123x");
    write(Existing::Truncate, [](MyWriteFile &) {});
    EXPECT_EQ(content(), "");
    auto full = MyWriteFile::open(u"/dev/full"_s, Existing::Append);
    ASSERT_TRUE(full);
    EXPECT_FALSE((*full)->write("x", 1));
    EXPECT_EQ((*full)->error().number, ENOSPC);
    EXPECT_EQ((*full)->position(), 0) << "the write can be repeated";
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
