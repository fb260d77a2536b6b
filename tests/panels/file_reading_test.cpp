// What panels read from files in the background: auto-fill, columns, levels and previews. Also what
// happens when a user stops it, edits, or closes the panel in the middle.
#include "corvanta/edit/edit_history.h"
#include "corvanta/main_ui.h"
#include "panels/background/task_row.h"
#include "panels/fill/auto_fill.h"
#include "panels/fill/merge_elements.h"
#include "panels/preview/preview.h"
#include "tests/panels/panel_support.h"
#include "tests/support/graph_folder.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyleFactory>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace corvanta;
using panels::Action;
using panels::Panel;

namespace {

constexpr int kMaxMs = 20000; // sanitizers are slow

bool waitFor(const std::function<bool()> &isTrue)
{
    return QTest::qWaitFor(isTrue, kMaxMs);
}

/// An editor with one action that reads files of a folder, and its panel.
class Editor
{
public:
    explicit Editor(const QByteArray &element)
    {
        m_global.setGraphDir(folder.path({}));
        graph.fileName = folder.path(u"test.graph"_s);
        graph.actions.append({u"a"_s, *XMLNode::parse(element)});
        action = panels::fromXml(element, &m_global);
        action->setIdx(0);
        MainUI::EditorHooks hooks;
        hooks.editedGraph = [this] { return &graph; };
        hooks.edited = [this](ActionItem *item, const ParameterEdit &edit) {
            history.record(item, edit);
            ++edits;
        };
        MainUI::setEditorHooks(hooks);
    }
    ~Editor() { MainUI::setEditorHooks({}); }

    void open()
    {
        panel.reset(action->createPanel(nullptr));
        panels::unfold(*panel);
        panel->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(panel.get()));
    }
    template <class Widget> Widget *find(const QString &name) const
    {
        return panel->findChild<Widget *>(name);
    }
    /// Press a button of the first row with work, or the one that uses a table.
    void click(const QString &button) const { find<QPushButton>(button)->click(); }
    QString value(const QString &name) const { return panels::valueOf(action, name); }
    void set(const QString &name, const QString &text)
    {
        ActionParameters &parameters = panels::parametersOf(action);
        ASSERT_TRUE(parameters.setParameterValue(parameters.indexOfParameter(name), text));
        panel->refresh();
    }
    bool waitForNote(const QString &text, NoteLabel::Kind kind = NoteLabel::Kind::Remark) const
    {
        return waitFor([&] {
            const QList<QLabel *> labels = panel->findChildren<QLabel *>();
            return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
                const auto *const note = dynamic_cast<const NoteLabel *>(label);
                return note != nullptr && note->kind() == kind && note->text().contains(text);
            });
        });
    }
    QStringList previewRow(int row) const
    {
        const QAbstractItemModel *const model = find<QTableView>(u"previewRows"_s)->model();
        QStringList cells;
        for (int column = 0; row < model->rowCount() && column < model->columnCount(); ++column) {
            cells << model->index(row, column).data().toString();
        }
        return cells;
    }
    bool waitForRow(int row, const QStringList &cells) const
    {
        return waitFor([&] { return previewRow(row) == cells; });
    }
    QString previewText() const { return find<QPlainTextEdit>(u"previewText"_s)->toPlainText(); }

    test::GraphFolder folder;
    CorvantaGraph graph;
    EditHistory history{&graph};
    int edits = 0;
    Action action;
    Panel panel;

private:
    GlobalParameters m_global;
};

const QByteArray kOrders = R"({"orders": [{"id": 1, "customer": {"name": "Li"}},
                                          {"id": 2, "customer": {"name": "Ann"}}]})";
const QByteArray kTwoTables = R"({"a": [{"x": 1}, {"x": 2}], "b": [{"y": "p", "z": 3}]})";

ParameterInfo levels()
{
    const Action action = panels::fromXml("<readJSON/>");
    const ActionParameters &parameters = panels::parametersOf(action);
    return parameters.parameters()[parameters.indexOfParameter(u"Level"_s)];
}

} // namespace

// ---- What is added to existing levels

TEST(MergedLevels, WhatExistsIsKeptAndWhatIsNewIsAdded)
{
    const QString existing =
        u"<Level initialPath='a' subtagName='b' future='1'>"
        "<e name='renamed' path='x'/><e name='y' path='own'/><Note/></Level>"_s;
    const QString found =
        u"<Level initialPath='a' subtagName='b'><e name='x' path='x'/>"
        "<e name='y' path='y'/></Level>"
        "<Level initialPath='c' subtagName=''><e name='z' path='&lt;'/></Level>"_s;
    const MergedElements merged = mergeElements(levels(), existing, found);
    EXPECT_EQ(merged.xml.toStdString(),
              "<Level initialPath='a' subtagName='b' future='1'>"
              "<e name='renamed' path='x'></e><e name='y' path='own'></e><Note></Note>"
              "<e name='y_2' path='y'></e></Level>"
              "<Level initialPath='c' subtagName=''><e name='z' path='&lt;'></e></Level>");
    EXPECT_EQ(merged.items, 2);
    EXPECT_EQ(merged.levels, 1);
    EXPECT_EQ(merged.conflict, QString());
    EXPECT_EQ(mergeElements(levels(), merged.xml, found).items, 0) << "nothing is new now";
}

TEST(MergedLevels, AnotherLevelInItsPlaceIsAConflict)
{
    const QString existing = u"<Level initialPath='a' subtagName='b'><e path='x'/></Level>"_s;
    const QString found = u"<Level initialPath='a' subtagName='c'><e path='x'/></Level>"_s;
    const MergedElements merged = mergeElements(levels(), existing, found);
    EXPECT_EQ(merged.conflict, u"a c"_s);
    EXPECT_EQ(merged.items, 0);
    EXPECT_TRUE(merged.xml.contains("subtagName='b'"_L1));
    // Levels without columns are not in use yet.
    EXPECT_EQ(mergeElements(levels(), u"<Level initialPath='' subtagName='q'/>"_s, found).items, 1);
}

// ---- Auto-fill

TEST(AutoFills, LevelsAreOneStepThatCanBeUndone)
{
    Editor editor("<readJSON fileName='orders.json'/>");
    editor.folder.write(u"orders.json"_s, kOrders);
    editor.open();
    editor.click(u"start"_s);
    EXPECT_TRUE(editor.find<QPushButton>(u"stop"_s)->isVisible());
    ASSERT_TRUE(editor.waitForNote(u"Columns added: 2; new levels: 1."_s));
    EXPECT_TRUE(editor.value(u"Level"_s).contains("customer"_L1));
    EXPECT_EQ(editor.value(u"warnUnread"_s), u"1"_s) << "a setting that new levels need";
    EXPECT_EQ(editor.edits, 1);
    EXPECT_TRUE(editor.graph.toXml().contains("warnUnread='1'"));
    editor.click(u"start"_s);
    EXPECT_TRUE(editor.waitForNote(u"Nothing new"_s));
    EXPECT_EQ(editor.edits, 1);
    const EditHistory::Step *const step = editor.history.undo();
    ASSERT_NE(step, nullptr);
    restoreParameters(*editor.action, step->before);
    EXPECT_EQ(editor.value(u"Level"_s), QString());
    EXPECT_EQ(editor.value(u"warnUnread"_s), u"0"_s);
}

TEST(AutoFills, ElementsWithOnlyACdataSectionAreColumns)
{
    const QByteArray feed = "<feed><item><id>1</id><text><![CDATA[a <b>]]></text></item>"
                            "<item><id>2</id><text><![CDATA[c]]></text></item></feed>";
    Editor editor("<readXML fileName='feed.xml'/>");
    editor.folder.write(u"feed.xml"_s, feed);
    editor.open();
    editor.click(u"start"_s);
    ASSERT_TRUE(editor.waitForNote(u"Columns added: 2; new levels: 1."_s));
    EXPECT_EQ(editor.value(u"readClearTags"_s), u"1"_s);
    EXPECT_TRUE(editor.waitForRow(0, {u"1"_s, u"a <b>"_s}));
}

TEST(AutoFills, EditedLevelsAndTheirSettingsAreKept)
{
    Editor editor("<readJSON version='4' fileName='orders.json'><Level initialPath='orders' "
                  "subtagName='' future='1'><e name='number' path='id'/></Level></readJSON>");
    editor.folder.write(u"orders.json"_s, kOrders);
    editor.open();
    editor.click(u"start"_s);
    ASSERT_TRUE(editor.waitForNote(u"Columns added: 1."_s));
    EXPECT_TRUE(editor.waitForNote(u"Settings for new levels are not changed: Warn about"_s));
    EXPECT_EQ(editor.value(u"warnUnread"_s), u"0"_s);
    const QByteArray document = editor.graph.toXml();
    EXPECT_TRUE(document.contains("name='number' path='id'")) << document.constData();
    EXPECT_TRUE(document.contains("future='1'")) << document.constData();
    EXPECT_TRUE(document.contains("path='customer/name'")) << document.constData();
}

TEST(AutoFills, TheUserChoosesAmongSeveralTables)
{
    Editor editor("<readJSON fileName='two.json'/>");
    editor.folder.write(u"two.json"_s, kTwoTables);
    editor.open();
    editor.click(u"start"_s);
    ASSERT_TRUE(editor.waitForNote(u"The file has 2 tables"_s));
    EXPECT_EQ(editor.edits, 0);
    auto *const tables = editor.find<QComboBox>(u"tables"_s);
    ASSERT_EQ(tables->count(), 2);
    EXPECT_EQ(tables->currentIndex(), 0) << "the one with more values";
    QTest::keyClick(tables, Qt::Key_Down);
    editor.click(u"use"_s);
    ASSERT_TRUE(editor.waitForNote(u"Columns added: 2; new levels: 1."_s));
    EXPECT_FALSE(tables->isVisible());
    EXPECT_TRUE(editor.value(u"Level"_s).contains("'z'"_L1));
}

TEST(AutoFills, ASheetIsChosen)
{
    Editor editor("<readExcel fileName='book.xlsx'/>");
    editor.folder.write(u"in.csv"_s, "n\n1\n");
    ASSERT_TRUE(editor.folder
                    .runChain({"<readCSV fileName='in.csv'/>",
                               "<writeExcel fileNameDestination='book.xlsx'/>"})
                    .succeeded);
    ASSERT_TRUE(editor.folder
                    .runChain({"<readCSV fileName='in.csv'/>",
                               "<writeExcel mode='2' fileNameDestination='book.xlsx' "
                               "sheetMode='1' sheetName='Second' createIfNotExists='1'/>"})
                    .succeeded);
    editor.open();
    editor.click(u"start"_s);
    ASSERT_TRUE(editor.waitForNote(u"The file has 2 sheets"_s));
    editor.find<QComboBox>(u"tables"_s)->setCurrentIndex(1);
    editor.click(u"use"_s);
    ASSERT_TRUE(editor.waitForNote(u"Set: "_s));
    EXPECT_EQ(editor.value(u"sheetIdx"_s), u"2"_s);
    EXPECT_EQ(editor.edits, 1);
    editor.set(u"sheets"_s, u"3"_s); // all
    editor.click(u"start"_s);
    ASSERT_TRUE(editor.waitForNote(u"The file has 2 sheets"_s));
    editor.find<QComboBox>(u"tables"_s)->setCurrentIndex(0);
    editor.click(u"use"_s);
    EXPECT_TRUE(editor.waitForNote(u"other settings ignore it"_s, NoteLabel::Kind::Warning));
}

TEST(AutoFills, ErrorsAreShownInPlace)
{
    Editor editor("<readJSON fileName='missing.json'/>");
    editor.open();
    editor.click(u"start"_s);
    EXPECT_TRUE(editor.waitForNote(u"missing.json' does not exists"_s, NoteLabel::Kind::Error));
    editor.set(u"fromInputPin"_s, u"1"_s);
    editor.click(u"start"_s);
    EXPECT_TRUE(editor.waitForNote(u"There is no file to read"_s));
    EXPECT_EQ(editor.edits, 0);
}

TEST(AutoFills, StopAndCloseLeaveTheActionUnchanged)
{
    Editor editor("<readJSON fileName='large.json' autoFillNRows='1000000'/>");
    editor.folder.write(u"large.json"_s,
                        '[' + QByteArray(R"({"a": 1, "b": [1, 2, 3]},)").repeated(200000) + "{}]");
    editor.open();
    editor.click(u"start"_s);
    editor.click(u"stop"_s);
    EXPECT_TRUE(editor.waitForNote(u"Stopped."_s));
    EXPECT_FALSE(editor.find<QPushButton>(u"stop"_s)->isVisible());
    editor.click(u"start"_s);
    editor.panel.reset();
    QTest::qWait(50);
    EXPECT_EQ(editor.value(u"Level"_s), QString());
    EXPECT_EQ(editor.edits, 0);
}

TEST(FileColumns, TheColumnsOfTheFileAreOffered)
{
    Editor editor("<readParquet fileName='t.parquet' columnSelection='1' outputFilenames='1'>"
                  "<ColumnsToRead><s>date</s><s>old</s></ColumnsToRead></readParquet>");
    editor.folder.write(u"in.csv"_s, "city,date\nx,y\n");
    ASSERT_TRUE(
        editor.folder.runChain({"<readCSV fileName='in.csv'/>", "<writeParquet file='t.parquet'/>"})
            .succeeded);
    editor.open();
    editor.click(u"start"_s);
    ASSERT_TRUE(editor.waitForNote(u"Columns in the file: 2."_s));
    const auto lists = editor.find<QWidget>(u"ColumnsToRead"_s)->findChildren<QListWidget *>();
    ASSERT_EQ(lists.size(), 2);
    const QListWidget &offered = *(lists[0]->count() == 1 ? lists[0] : lists[1]);
    EXPECT_EQ(offered.count(), 1);
    EXPECT_EQ(offered.item(0)->text(), u"city"_s) << "not yet in the list";
    EXPECT_EQ(editor.value(u"ColumnsToRead"_s), u"date\nold"_s);
    EXPECT_EQ(editor.edits, 0);
    QFile(editor.folder.path(u"t.parquet"_s)).remove();
    editor.click(u"start"_s);
    EXPECT_TRUE(editor.waitForNote(u"t.parquet"_s, NoteLabel::Kind::Error));
}

// ---- Editors of levels

TEST(Levels, ThePanelMayBeClosedWhileTheFileIsRead)
{
    Editor editor("<readJSON fileName='deep.json'/>");
    editor.folder.write(u"deep.json"_s, QByteArray(200'000, '['));
    for (int i = 0; i < 20; ++i) {
        editor.open();
    }
    editor.panel.reset();
    QTest::qWait(50);
}

// ---- Preview

TEST(Previews, RowsAndTheFileFollowTheEdits)
{
    Editor editor("<readJSON fileName='orders.json' newMode='1'><Level initialPath='orders' "
                  "subtagName=''><e name='n' path='id'/></Level></readJSON>");
    editor.folder.write(u"orders.json"_s, kOrders);
    editor.folder.write(u"new.json"_s, R"({"orders": [{"id": "\u00e9"}, {}]})");
    editor.open();
    ASSERT_TRUE(editor.waitForRow(1, {u"2"_s}));
    const auto *const model = editor.find<QTableView>(u"previewRows"_s)->model();
    EXPECT_EQ(model->headerData(0, Qt::Horizontal).toString(), u"n\ntext"_s);
    EXPECT_EQ(editor.previewText(), QString::fromUtf8(kOrders));
    EXPECT_TRUE(editor.waitForNote(u"Rows: 2"_s));
    // Only the last of several edits is read.
    for (const QString &name : {u"n"_s, u"ne"_s, u"new.json"_s}) {
        editor.set(u"fileName"_s, name);
    }
    ASSERT_TRUE(editor.waitForRow(0, {u"\u00e9"_s}));
    EXPECT_EQ(editor.previewRow(1), QStringList{u"missing"_s});
    editor.set(u"fileName"_s, u"gone.json"_s);
    EXPECT_TRUE(editor.waitForNote(u"gone.json' does not exists"_s, NoteLabel::Kind::Error));
    EXPECT_EQ(editor.edits, 0);
}

TEST(Previews, BytesAndMembersOfArchivesAreShown)
{
    EXPECT_EQ(textOfBytes("PK\x03\x04 12345", {}).text,
              u"00000000  50 4b 03 04 20 31 32 33  PK.. 123\n"
              "00000008  34 35                    45\n"_s);
    EXPECT_EQ(textOfBytes("\xff\xfe"
                          "a\0b\0"_ba,
                          {})
                  .text,
              u"ab"_s);
    EXPECT_EQ(textOfBytes("caf\xe9", {}).text, u"caf\u00e9"_s);
    EXPECT_EQ(textOfBytes("\xe9\xea", u"KOI8-R"_s).text, u"\u0418\u0419"_s);
    EXPECT_TRUE(textOfBytes(QByteArray(16383, 'x') + '\xc3', {}).text.endsWith(u'x')) << "cut";
    const test::GraphFolder folder;
    folder.write(u"in.csv"_s, "n\n1\n");
    ASSERT_TRUE(folder
                    .runChain({"<readCSV fileName='in.csv'/>",
                               "<writeExcel fileNameDestination='book.zip'/>"})
                    .succeeded);
    const RawText member = beginningOf(folder.path(u"book.zip@[Content_Types].xml"_s), {});
    EXPECT_TRUE(member.text.startsWith("<?xml"_L1)) << member.problem.toStdString();
    EXPECT_EQ(member.name, u"book.zip@[Content_Types].xml"_s);
    EXPECT_FALSE(beginningOf(folder.path(u"none"_s), {}).problem.isEmpty());
}

TEST(Previews, ClosingStopsTheReading)
{
    for (const int wait : {0, Preview::kDelayMs / 20, Preview::kDelayMs}) {
        Editor editor("<readJSON fileName='large.json' newMode='1'><Level initialPath='' "
                      "subtagName='none'><e name='n' path='a'/></Level></readJSON>");
        editor.folder.write(u"large.json"_s,
                            '[' + QByteArray(R"({"a": 1},)").repeated(200000) + "{}]");
        editor.open();
        QTest::qWait(wait);
        editor.set(u"outputSubTags"_s, u"1"_s);
        QTest::qWait(wait);
        editor.panel.reset();
    }
}

// A run would write the file again at each edit.
TEST(Previews, NoFileIsWritten)
{
    Editor editor("<readJSON fromInputPin='1' colJSON='j'><Level initialPath='' subtagName=''>"
                  "<e name='n' path='a'/></Level></readJSON>");
    editor.folder.write(u"in.csv"_s, "j\n{}\n");
    editor.graph.actions.append({u"in"_s, *XMLNode::parse("<readCSV fileName='in.csv'/>")});
    editor.graph.actions.append({u"out"_s, *XMLNode::parse("<writeCSV fileName='out.csv'/>")});
    editor.graph.links = {{{u"in"_s, 0}, {u"out"_s, 0}}, {{u"out"_s, 0}, {u"a"_s, 0}}};
    editor.open();
    EXPECT_TRUE(
        editor.waitForNote(u"does not run actions that write files"_s, NoteLabel::Kind::Error));
    EXPECT_EQ(editor.folder.files(), QStringList{u"in.csv"_s});
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("CORVANTA_PLUGIN_PATH", QFileInfo(QStringLiteral(CORVANTA_MODULE)).path().toUtf8());
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
