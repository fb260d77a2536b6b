// The editors of single structures in the panels of their actions: levels, items, charts, tables
// and widths.
#include "corvanta/corvanta_graph.h"
#include "corvanta/edit/edit_history.h"
#include "corvanta/main_ui.h"
#include "panels/field_editor.h"
#include "tests/panels/panel_support.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// The panel of an action, with the editor of one parameter.
class Structure
{
public:
    Structure(const QByteArray &xml, const QString &parameter)
        : name(parameter)
        , action(panels::fromXml(xml, &m_global))
        , panel(action->createPanel(nullptr))
        , editor(static_cast<FieldEditor *>(panel->findChild<QWidget *>(parameter)))
    {
        panels::unfold(*panel);
        panel->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(panel.get()));
    }
    ~Structure() { panels::setInputColumns({}); }

    QWidget *main() const { return editor->focusProxy(); }
    QTreeWidget *tree() const { return static_cast<QTreeWidget *>(main()); }
    QTableWidget *table() const { return editor->findChild<QTableWidget *>(); }
    /// The field of a member of the current element.
    FieldEditor *field(const QString &member) const
    {
        return static_cast<FieldEditor *>(editor->findChild<QWidget *>(member));
    }
    template <class T> T *control(const QString &member) const
    {
        return field(member)->findChild<T *>();
    }
    QString value() const { return panels::valueOf(action, name); }
    QStringList summaries() const
    {
        QStringList texts;
        for (QTreeWidgetItemIterator each(tree()); *each != nullptr; ++each) {
            texts << (*each)->text(0);
        }
        return texts;
    }
    /// Enter a text in a cell, as a user does.
    void enter(int row, int column, const QString &text) const
    {
        table()->setCurrentCell(row, column);
        QTest::keyClick(table(), Qt::Key_F2);
        auto *const line = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        ASSERT_NE(line, nullptr);
        line->selectAll();
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
        QApplication::processEvents(); // the table takes the text later
    }

    QString name;

private:
    GlobalParameters m_global;

public:
    panels::Action action;
    panels::Panel panel;
    FieldEditor *editor;
};

QStringList textsOf(const QComboBox &box)
{
    QStringList texts;
    for (int i = 0; i < box.count(); ++i) {
        texts << box.itemText(i);
    }
    return texts;
}

QString write(const QTemporaryDir &folder, const QString &name, const QByteArray &content)
{
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return file.fileName();
}

} // namespace

TEST(ReadLevels, PathsOfTheFileCanBeChosen)
{
    const QTemporaryDir folder;
    const QString file =
        write(folder, u"a.json"_s,
              R"({"orders":[{"id":1,"who":{"name":"x"},"lines":[{"article":"p","price":2},)"
              R"({"article":"q","price":3}]},{"id":2,"who":{"name":"y"},"lines":[]}]})");
    const Structure levels("<readJSON fileName='" + file.toUtf8() +
                               "'><Level initialPath='orders' subtagName=''><e name='n' path='id' "
                               "new='1'/></Level></readJSON>",
                           u"Level"_s);
    auto *const container = levels.control<QComboBox>(u"initialPath"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return container->count() > 0; }, 10000));
    EXPECT_EQ(textsOf(*container), QStringList{u"orders"_s});
    // A second level is inside the first one.
    QTest::keyClick(levels.tree(), Qt::Key_Insert);
    EXPECT_EQ(textsOf(*container), QStringList{u"lines"_s});
    container->setFocus();
    QTest::keyClicks(container, u"lines"_s);
    QTest::keyClick(levels.table(), Qt::Key_Insert);
    levels.table()->setCurrentCell(0, 1);
    QTest::keyClick(levels.table(), Qt::Key_F2);
    auto *const box = qobject_cast<QComboBox *>(QApplication::focusWidget());
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(textsOf(*box), (QStringList{u"article"_s, u"price"_s}));
    QTest::keyClicks(box, u"price"_s);
    QTest::keyClick(box, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(levels.summaries(),
              (QStringList{u"orders (columns: 1)"_s, u"    \u2514 lines (columns: 1)"_s}));
    EXPECT_TRUE(levels.value().contains("<Level initialPath='lines' subtagName=''>"_L1))
        << levels.value().toStdString();
    EXPECT_TRUE(levels.value().contains("path='price'"_L1)) << levels.value().toStdString();
    // Up: the new level is now the outer one.
    QTest::keyClick(levels.tree(), Qt::Key_Up, Qt::ControlModifier);
    EXPECT_LT(levels.value().indexOf("'lines'"_L1), levels.value().indexOf("'orders'"_L1));
}

TEST(ReadLevels, ManyColumnsAreEditedInATable)
{
    QByteArray columns;
    for (int i = 0; i < 50; ++i) {
        columns += "<e name='c" + QByteArray::number(i) + "' path='p'/>";
    }
    const Structure levels("<readXML fileName='f'><Level initialPath='a' subtagName='b'>" +
                               columns + "<LeftOut><s>x</s></LeftOut></Level></readXML>",
                           u"Level"_s);
    ASSERT_EQ(levels.table()->rowCount(), 50);
    levels.enter(7, 0, u"<seven>"_s);
    EXPECT_TRUE(levels.value().contains("name='&lt;seven&gt;' path='p'"_L1));
    levels.table()->item(7, 2)->setCheckState(Qt::Checked);
    EXPECT_TRUE(levels.value().contains("path='p' tagName='1'"_L1));
    levels.table()->setCurrentCell(49, 0);
    QTest::keyClick(levels.table(), Qt::Key_Up, Qt::ControlModifier);
    QTest::keyClick(levels.table(), Qt::Key_Delete);
    EXPECT_EQ(levels.table()->rowCount(), 49);
    EXPECT_FALSE(levels.value().contains("'c49'"_L1));
    EXPECT_TRUE(levels.value().contains("<s>x</s>"_L1)) << "LeftOut is kept";
    auto *const isRequired = levels.control<QCheckBox>(u"required"_s);
    ASSERT_NE(isRequired, nullptr) << "flags are check boxes";
    isRequired->click();
    EXPECT_TRUE(levels.value().contains("required='1'"_L1));
}

TEST(WriteLevels, FieldsFollowTheTypeAndThePreviewFollowsTheFields)
{
    panels::setInputColumns({u"id"_s, u"name"_s});
    const Structure levels("<writeJSON fileName='f'/>", u"Levels"_s);
    auto *const preview = levels.editor->findChildren<QPlainTextEdit *>().last();
    EXPECT_EQ(preview->toPlainText(),
              uR"([{"id":"id 1","name":"name 1"},{"id":"id 2","name":"name 2"}])"_s);
    QTest::keyClick(levels.tree(), Qt::Key_Insert); // begins with the items of the default
    EXPECT_EQ(levels.summaries(),
              (QStringList{u"Level 1"_s, u"A simple text: {"_s,
                           u"A dictionary containing all columns"_s, u"A simple text: }"_s}));
    levels.tree()->setCurrentItem(levels.tree()->topLevelItem(0)->child(1));
    EXPECT_FALSE(levels.field(u"text"_s)->isVisible());
    EXPECT_FALSE(levels.field(u"columns"_s)->isVisible());
    QTest::keyClick(levels.field(u"type"_s)->focusProxy(), Qt::Key_Down); // some columns
    EXPECT_TRUE(levels.field(u"columns"_s)->isVisible());
    EXPECT_TRUE(levels.field(u"p1"_s)->isVisible());
    EXPECT_EQ(levels.tree()->currentItem()->toolTip(0), u"<p>No column is chosen</p>"_s);
    auto *const search = levels.control<QLineEdit>(u"columns"_s);
    QTest::keyClicks(search, u"name"_s);
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_TRUE(levels.value().contains("<Item type='2'"_L1)) << levels.value().toStdString();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return preview->toPlainText() == uR"([{"name":"name 1"},{"name":"name 2"}])"_s;
    })) << preview->toPlainText().toStdString();
}

TEST(WriteLevels, AnErrorIsShownInPlaceAndLevelsAreCalledByName)
{
    panels::setInputColumns({u"id"_s, u"name"_s});
    const Structure levels(
        "<writeXML fileName='f'><Levels><Level commaSeparated='0' future='1'><Item type='0' "
        "text='&lt;a>'/>"
        "<Item type='8' calledLevel='inner'/><Item type='0' text='&lt;/a>'/></Level>"
        "<Level name='inner' partitionCol='id'><Item type='6'><s>name</s></Item></Level></Levels>"
        "</writeXML>",
        u"Levels"_s);
    auto *const preview = levels.editor->findChildren<QPlainTextEdit *>().last();
    EXPECT_EQ(preview->toPlainText(), u"<data><a>name 1</a><a>name 2</a></data>"_s);
    levels.tree()->setCurrentItem(levels.tree()->topLevelItem(0)->child(1));
    auto *const called = levels.control<QComboBox>(u"calledLevel"_s);
    EXPECT_EQ(textsOf(*called), (QStringList{QString(), u"inner"_s}));
    called->lineEdit()->selectAll();
    QTest::keyClicks(called, u"x"_s);
    EXPECT_EQ(levels.tree()->currentItem()->toolTip(0), u"<p>There is no level 'x'</p>"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return preview->toPlainText().isEmpty(); }));
    const QList<QLabel *> labels = levels.editor->findChildren<QLabel *>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->text().contains("cannot find the level named 'x'"_L1);
    }));
    EXPECT_TRUE(levels.value().contains("calledLevel='x'"_L1));
}

TEST(WriteLevels, ThePreviewHasTheRowsOfTheInput)
{
    const QTemporaryDir folder;
    const QString file = write(folder, u"in.csv"_s, "k,v\n1,a\n2,b\n3,c\n4,d\n5,e\n6,f\n");
    auto graph = CorvantaGraph::parse(
        "<graph version='4'><action id='in'><readCSV fileName='" + file.toUtf8() +
            "'/></action><action id='out'><writeJSON fileName='o.json'/></action>"
            "<link from='in:0' to='out:0'/></graph>",
        folder.filePath(u"a.graph"_s));
    ASSERT_TRUE(graph);
    MainUI::EditorHooks hooks;
    hooks.editedGraph = [&] { return &*graph; };
    MainUI::setEditorHooks(hooks);
    GlobalParameters global;
    const panels::Action action = panels::fromXml("<writeJSON fileName='o.json'/>", &global);
    action->setIdx(1);
    const panels::Panel panel(action->createPanel(nullptr));
    auto *const preview =
        panel->findChild<QWidget *>(u"Levels"_s)->findChildren<QPlainTextEdit *>().last();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return preview->toPlainText().contains(R"({"k":"5","v":"e"}])"_L1); }, 10000))
        << preview->toPlainText().toStdString();
    MainUI::setEditorHooks({});
}

TEST(Charts, TagsOfTheTemplateAreOfferedAndOthersMarked)
{
    panels::setInputColumns({u"country"_s, u"amount"_s});
    const Structure charts(
        "<writeReport template='" CORVANTA_SOURCE_DIR
        "/templates/office/bar.docx' output='o.docx' nPinIn='2'><Chart type='4' name='gone' "
        "kept='1'><axis pinIdx='1'>country</axis><axis pinIdx='0'>old</axis><axis pinIdx='0'>more"
        "</axis></Chart></writeReport>",
        u"Chart"_s);
    auto *const add = charts.editor->findChild<QPushButton *>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return add->isVisible(); }, 10000));
    EXPECT_EQ(charts.tree()->topLevelItem(0)->toolTip(0),
              u"<p>The template has no tag 'gone'</p>"_s);
    EXPECT_EQ(charts.editor->problem().text, u"input pin 0 has no column 'old'"_s);
    QTest::mouseClick(add, Qt::LeftButton);
    EXPECT_GE(charts.tree()->topLevelItemCount(), 2);
    EXPECT_GT(charts.value().indexOf("name='gone'"_L1), charts.value().indexOf("name='data'"_L1))
        << "kept, at the end";
    EXPECT_FALSE(add->isVisible());
    // The first tag gets its data.
    charts.tree()->setCurrentItem(charts.tree()->topLevelItem(0));
    const QList<QComboBox *> boxes = charts.field(u"axis"_s)->findChildren<QComboBox *>();
    QTest::keyClick(boxes[2], Qt::Key_Down); // the pin of the values
    QTest::keyClicks(boxes[3], u"amount"_s);
    EXPECT_TRUE(charts.value().contains("<axis pinIdx='1'>amount</axis>\n  </Chart>"_L1))
        << charts.value().toStdString();
    EXPECT_FALSE(boxes[6]->isHidden()) << "a bar chart has error bars";
    QTest::keyClick(charts.field(u"type"_s)->focusProxy(), Qt::Key_End);
    EXPECT_TRUE(boxes[6]->isHidden()) << "a radar chart has none";
}

TEST(Charts, AChosenTemplateBringsItsCharts)
{
    const Structure charts("<writeReport template='' output='o.docx' nPinIn='1'><Chart type='4' "
                           "name='gone'><axis pinIdx='0'>old</axis></Chart></writeReport>",
                           u"Chart"_s);
    auto *const line = charts.panel->findChild<QWidget *>(u"template"_s)->findChild<QLineEdit *>();
    QTest::keyClicks(line, QStringLiteral(CORVANTA_SOURCE_DIR "/templates/office/bar.docx"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return charts.value().contains("name='data'"_L1); }, 10000));
    EXPECT_TRUE(charts.value().contains(">old</axis>"_L1)) << "the user decides";
    // Undo brings back another template with its charts, and adds none.
    ActionParameters &parameters = panels::parametersOf(charts.action);
    parameters.setParameterValue(parameters.indexOfParameter(u"Chart"_s), {});
    parameters.setParameterValue(parameters.indexOfParameter(u"template"_s),
                                 QStringLiteral(CORVANTA_SOURCE_DIR "/templates/office/line.docx"));
    static_cast<UpdateClassWidget *>(charts.panel.get())->refresh();
    auto *const add = charts.editor->findChild<QPushButton *>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return add->isVisible(); }, 10000));
    EXPECT_EQ(charts.value(), QString());
}

TEST(Charts, TheColumnsOfThePinAreOffered)
{
    MainUI::EditorHooks hooks;
    hooks.inputColumns = [](ActionItem *, int pin) {
        TableSchema schema;
        schema.names = {pin == 0 ? u"a"_s : u"b"_s};
        return schema;
    };
    MainUI::setEditorHooks(hooks);
    const Structure charts(
        "<writeReport output='o.docx' nPinIn='2'><Chart type='0' name='x'><axis pinIdx='0'>a</axis>"
        "</Chart><Chart type='0' name='y'><axis pinIdx='1'>b</axis></Chart></writeReport>",
        u"Chart"_s);
    for (const int chart : {0, 1, 0}) {
        charts.tree()->setCurrentItem(charts.tree()->topLevelItem(chart));
        const QList<QComboBox *> boxes = charts.field(u"axis"_s)->findChildren<QComboBox *>();
        EXPECT_EQ(textsOf(*boxes[1]), QStringList(chart == 0 ? u"a"_s : u"b"_s));
    }
}

TEST(Charts, PinsAreAddedAndRemovedByTheAction)
{
    int edits = 0;
    MainUI::EditorHooks hooks;
    hooks.edited = [&](ActionItem *, const ParameterEdit &) { ++edits; };
    MainUI::setEditorHooks(hooks);
    const Structure charts("<writeReport template='t.docx' output='o.docx' nPinIn='2'><Chart "
                           "type='4' name='a'><axis pinIdx='1'>c</axis><axis "
                           "pinIdx='2147483647'/></Chart></writeReport>",
                           u"Chart"_s);
    charts.tree()->setCurrentItem(charts.tree()->topLevelItem(0));
    EXPECT_EQ(charts.field(u"axis"_s)->findChildren<QComboBox *>()[2]->count(), 1000);
    auto *const pins = static_cast<FieldEditor *>(charts.panel->findChild<QWidget *>(u"nPinIn"_s));
    const QList<QToolButton *> buttons = pins->findChildren<QToolButton *>();
    QTest::mouseClick(buttons[0], Qt::LeftButton);
    EXPECT_EQ(charts.action->pinInCount(), 3);
    QTest::mouseClick(buttons[1], Qt::LeftButton);
    QTest::mouseClick(buttons[1], Qt::LeftButton);
    EXPECT_EQ(charts.action->pinInCount(), 1);
    EXPECT_EQ(edits, 3) << "each is one step";
    EXPECT_TRUE(charts.value().contains("<axis pinIdx='0'></axis>"_L1)) << "reset by the action";
    EXPECT_EQ(pins->findChild<QSpinBox *>()->value(), 1);
    MainUI::setEditorHooks({});
}

TEST(DocTables, AreAddedWithTheirPins)
{
    const Structure tables("<writeDocTable template='' output='o.docx'><v markerName='A' "
                           "colWidths='100' styleID='S' extra='1'/></writeDocTable>",
                           u"v"_s);
    QTest::keyClick(tables.table(), Qt::Key_Insert);
    EXPECT_EQ(tables.action->pinInCount(), 2);
    ASSERT_EQ(tables.table()->rowCount(), 2);
    EXPECT_EQ(tables.table()->item(1, 0)->text(), u"T2"_s);
    tables.enter(1, 1, u"500,600"_s);
    EXPECT_TRUE(tables.value().contains("markerName='T2' colWidths='500,600'"_L1));
    QTest::keyClick(tables.table(), Qt::Key_Delete);
    EXPECT_EQ(tables.action->pinInCount(), 1);
    EXPECT_TRUE(tables.value().contains("markerName='A'"_L1));
}

TEST(DocTables, MarkersAndStylesOfTheTemplateAreOffered)
{
    const Structure tables("<writeDocTable template='" CORVANTA_SOURCE_DIR
                           "/examples/documents/report.docx' output='o.docx'><v markerName='A' "
                           "colWidths='' styleID='S'/></writeDocTable>",
                           u"v"_s);
    QTableWidget *const table = tables.table();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !table->item(0, 0)->icon().isNull(); }, 10000));
    const auto offered = [&](int column) {
        table->setCurrentCell(0, column);
        QTest::keyClick(table, Qt::Key_F2);
        auto *const box = table->findChild<QComboBox *>();
        const QStringList texts = box == nullptr ? QStringList() : textsOf(*box);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        delete box;
        return texts;
    };
    EXPECT_TRUE(offered(0).contains(u"T1"_s)) << offered(0).join(u' ').toStdString();
    EXPECT_EQ(offered(2), (QStringList{u"TableGrid"_s, u"TableNormal"_s, u"Report"_s}));
    // What a title means is below the table.
    table->setCurrentCell(0, 1);
    const QList<QLabel *> notes = tables.editor->findChildren<QLabel *>();
    EXPECT_TRUE(std::any_of(notes.begin(), notes.end(), [](const QLabel *note) {
        return note->isVisible() && note->text().contains("twentieths of a point"_L1);
    }));
    ActionParameters &parameters = panels::parametersOf(tables.action);
    parameters.setParameterValue(parameters.indexOfParameter(u"template"_s), {});
    static_cast<UpdateClassWidget *>(tables.panel.get())->refresh();
    EXPECT_FALSE(offered(0).contains(u"T1"_s));
}

TEST(Structures, KeepWhatTheTableDoesNotDeclare)
{
    CorvantaGraph graph;
    EditHistory history(&graph);
    MainUI::EditorHooks hooks;
    hooks.editedGraph = [&] { return &graph; };
    hooks.edited = [&](ActionItem *action, const ParameterEdit &edit) {
        history.record(action, edit);
    };
    MainUI::setEditorHooks(hooks);
    const auto edited = [&](const QByteArray &xml, const QString &parameter) {
        graph.actions = {{u"a"_s, *XMLNode::parse(xml)}};
        const panels::Action action = panels::fromXml(xml);
        action->setIdx(0);
        const panels::Panel panel(action->createPanel(nullptr));
        QTest::keyClick(panel->findChild<QWidget *>(parameter)->focusProxy(),
                        parameter == "nPinIn"_L1 ? Qt::Key_Down : Qt::Key_Insert);
        return graph.toXml();
    };
    for (const auto &[xml, parameter, kept] :
         {std::tuple<QByteArray, QString, QByteArrayList>{
              "<writeJSON fileName='f'><Levels w='1'><Level x='1'><Item type='0' y='1'><z>t</z>"
              "</Item></Level></Levels></writeJSON>",
              u"Levels"_s,
              {"w='1'", "x='1'", "y='1'", "<z>t</z>"}},
          {"<writeSAS fileName='f'><StringColDef w='1'><CD n='a' l='8' ol='5' x='1'/>"
           "</StringColDef></writeSAS>",
           u"StringColDef"_s,
           {"w='1'", "x='1'"}},
          {"<writeDocTable output='o'><v markerName='A' colWidths='' styleID='' x='1'/>"
           "</writeDocTable>",
           u"v"_s,
           {"x='1'", "'T2'"}},
          {"<readXML fileName='f'><Level initialPath='a' subtagName='b'><e name='n' path='p' "
           "x='1'/><y/></Level></readXML>",
           u"Level"_s,
           {"x='1'", "<y"}},
          {"<writeReport nPinIn='1' output='o' template='t'><Chart type='0' name='n' x='1'><axis "
           "pinIdx='0' y='1'>c</axis></Chart></writeReport>",
           u"Chart"_s,
           {"x='1'", "y='1'"}},
          {"<writeReport nPinIn='2' output='o' template='t'><Chart type='0' name='n' x='1'><axis "
           "pinIdx='1' y='1'>c</axis><z/></Chart></writeReport>",
           u"nPinIn"_s,
           {"nPinIn='1'", "x='1'", "pinIdx='0' y='1'", "<z"}}}) {
        const QByteArray document = edited(xml, parameter);
        EXPECT_EQ(history.undo() != nullptr, true) << parameter.toStdString();
        for (const QByteArray &part : kept) {
            EXPECT_TRUE(document.contains(part)) << part.constData() << document.constData();
        }
    }
    MainUI::setEditorHooks({});
}

TEST(TextWidths, EachTextColumnOfTheInputHasAWidthOrNone)
{
    panels::setInputColumns({u"city"_s, u"note"_s});
    const Structure widths("<writeSAS fileName='f'><StringColDef><CD n='old' l='8' ol='5' x='1'/>"
                           "</StringColDef></writeSAS>",
                           u"StringColDef"_s);
    ASSERT_EQ(widths.table()->rowCount(), 3);
    EXPECT_EQ(widths.editor->problem().text, u"the input has no column 'old'"_s);
    widths.enter(2, 1, u"4x2"_s); // digits only
    EXPECT_TRUE(widths.value().endsWith("<CD n='note' l='42' ol='0'/>\n</StringColDef>"_L1) ||
                widths.value().contains("n='note' l='42' ol='0'"_L1))
        << widths.value().toStdString();
    EXPECT_FALSE(widths.value().contains("city"_L1)) << "no width yet";
    widths.enter(2, 1, {});
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
    EXPECT_EQ(widths.table()->rowCount(), 3);
    panels::setInputColumns({});
    widths.editor->refreshContext();
    EXPECT_EQ(widths.editor->problem().text, QString()) << "nothing is known";
}
