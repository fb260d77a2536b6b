// What must hold for the panel of every action: each parameter has a field that edits it, nothing
// is lost, and people can see, read and reach everything.
#include "corvanta/corvanta_graph.h"
#include "corvanta/edit/edit_history.h"
#include "corvanta/help.h"
#include "corvanta/main_ui.h"
#include "panels/field_editor.h"
#include "tests/panels/panel_keys.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDirIterator>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <ctime>

using namespace Qt::StringLiterals;
using namespace corvanta;
using panels::Action;
using panels::enterValue;
using panels::nameOf;
using panels::Panel;
using panels::satisfy;
using panels::shown;

namespace {

using Type = ParameterInfo::Type;

class Panels : public testing::TestWithParam<std::string>
{
protected:
    static QString type() { return QString::fromStdString(GetParam()); }
};

QWidget *fieldOf(const Panel &panel, const QString &name)
{
    return panel->findChild<QWidget *>(name);
}

/// Controls that a user reaches with Tab.
QList<QWidget *> controlsOf(const QWidget &panel)
{
    QList<QWidget *> controls = panel.findChildren<QWidget *>();
    controls.removeIf([](const QWidget *widget) {
        const QWidget *const parent = widget->parentWidget();
        const bool isPart = qobject_cast<const QAbstractSpinBox *>(parent) != nullptr ||
                            qobject_cast<const QComboBox *>(parent) != nullptr ||
                            widget->inherits("QComboBoxPrivateContainer") ||
                            parent->inherits("QComboBoxPrivateContainer") ||
                            qobject_cast<const QScrollBar *>(widget) != nullptr ||
                            widget->focusProxy() != nullptr;
        return isPart || (widget->focusPolicy() & Qt::TabFocus) == 0;
    });
    return controls;
}

QStringList graphFiles()
{
    QStringList files;
    for (const QString &folder : {u"tests/graphs"_s, u"examples"_s}) {
        QDirIterator each(QDir(QStringLiteral(CORVANTA_SOURCE_DIR)).filePath(folder),
                          {u"*.graph"_s}, QDir::Files, QDirIterator::Subdirectories);
        while (each.hasNext()) {
            files << each.next();
        }
    }
    return files;
}

/// An editor with one action whose edits can be undone.
class UndoEditor
{
public:
    explicit UndoEditor(const QByteArray &element)
    {
        graph.actions.append({u"a"_s, *XMLNode::parse(element)});
        action = panels::fromXml(element, &m_global);
        action->setIdx(0);
        MainUI::EditorHooks hooks;
        hooks.edited = [this](ActionItem *item, const ParameterEdit &edit) {
            history.record(item, edit);
        };
        hooks.modified = [this] { ++modified; };
        MainUI::setEditorHooks(hooks);
        panel.reset(action->createPanel(nullptr));
        panel->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(panel.get()));
    }
    ~UndoEditor() { MainUI::setEditorHooks({}); }

    /// Returns false when there is nothing to undo.
    bool undo()
    {
        const EditHistory::Step *const step = history.undo();
        if (step != nullptr) {
            restoreParameters(*action, step->before);
            panel->refresh();
        }
        return step != nullptr;
    }
    QString value(const QString &name) const { return panels::valueOf(action, name); }

    CorvantaGraph graph;
    EditHistory history{&graph};
    int modified = 0;
    Action action;
    Panel panel;

private:
    GlobalParameters m_global;
};

} // namespace

TEST_P(Panels, EveryParameterIsEditedByItsField)
{
    const QVector<ParameterInfo> infos =
        panels::parametersOf(panels::fromXml(panels::example(type()))).parameters();
    for (int i = 0; i < infos.size(); ++i) {
        UndoEditor editor(panels::example(type()));
        const QByteArray unedited = editor.graph.toXml();
        ActionParameters &parameters = panels::parametersOf(editor.action);
        satisfy(parameters, infos[i]);
        panels::unfold(*editor.panel);
        editor.panel->refresh();
        QWidget *const field = fieldOf(editor.panel, infos[i].name);
        ASSERT_NE(field, nullptr) << infos[i].name.toStdString();
        EXPECT_TRUE(field->isEnabled()) << infos[i].name.toStdString();
        const QString old = parameters.parameterValue(i);
        QString expected = enterValue(field, infos[i], old);
        if (infos[i].type == Type::Structure) {
            expected = parameters.parameterValue(i);
        }
        EXPECT_NE(expected, old) << infos[i].name.toStdString();
        EXPECT_EQ(parameters.parameterValue(i), expected) << infos[i].name.toStdString();
        // The saved form has the value.
        const Action copy = panels::fromXml(panels::saved(*editor.action));
        EXPECT_EQ(panels::parametersOf(copy).parameterValue(i), expected)
            << infos[i].name.toStdString();
        while (editor.undo()) {
        }
        EXPECT_EQ(editor.graph.toXml(), unedited) << infos[i].name.toStdString();
    }
}

TEST_P(Panels, OpensQuicklyAndFitsOnTheScreen)
{
#if defined(__SANITIZE_ADDRESS__)
    constexpr double kMaxSeconds = 0.4; // of CPU time; it takes four times as much
#else
    constexpr double kMaxSeconds = 0.1;
#endif
    const Action action = panels::fromXml(panels::example(type()));
    const Panel first(action->createPanel(nullptr)); // loads fonts and the style
    const std::clock_t start = std::clock();
    const Panel panel(action->createPanel(nullptr));
    panel->show();
    QApplication::processEvents();
    EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, kMaxSeconds);
    EXPECT_LE(panel->sizeHint().height(), 700);
}

TEST_P(Panels, EveryControlHasANameAndADescription)
{
    const Action action = panels::fromXml(panels::example(type()));
    const Panel panel = shown(action);
    QStringList mnemonics;
    for (const QWidget *const control : controlsOf(*panel)) {
        EXPECT_FALSE(control->accessibleName().isEmpty()) << nameOf(control);
        EXPECT_FALSE(control->accessibleDescription().isEmpty()) << nameOf(control);
    }
    QStringList texts;
    for (const QLabel *const label : panel->findChildren<QLabel *>()) {
        texts << (label->buddy() == nullptr ? QString() : label->text());
    }
    for (const QAbstractButton *const button : panel->findChildren<QAbstractButton *>()) {
        texts << button->text();
    }
    for (const QString &text : std::as_const(texts)) {
        const QString key = QKeySequence::mnemonic(text).toString();
        EXPECT_FALSE(!key.isEmpty() && mnemonics.contains(key)) << text.toStdString();
        mnemonics << key;
    }
}

TEST_P(Panels, TabVisitsTheFieldsFromTopToBottom)
{
    const Action action = panels::fromXml(panels::example(type()));
    const Panel panel = shown(action);
    panel->resize(panel->sizeHint().width(), 4000); // without scrolling
    QApplication::processEvents();
    QWidget *const start = panel->nextInFocusChain();
    int y = -1;
    for (QWidget *next = start; next != panel.get(); next = next->nextInFocusChain()) {
        if (controlsOf(*panel).contains(next) && next->isVisible()) {
            const int top = next->mapTo(panel.get(), QPoint()).y();
            EXPECT_GE(top, y - next->height() - 150)
                << nameOf(next); // lists are next to each other
            y = top;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Panels, testing::ValuesIn(panels::testedTypes()),
                         [](const auto &info) { return info.param; });

TEST(PanelEdits, AnInvalidValueIsRejectedAndExplained)
{
    UndoEditor editor("<writeSAS fileName='f'/>");
    panels::parametersOf(editor.action)
        .setParameterValue(panels::parametersOf(editor.action).indexOfParameter(u"autoWidth"_s),
                           u"1"_s);
    editor.panel->refresh();
    auto *const line = fieldOf(editor.panel, u"f1"_s)->findChild<QLineEdit *>();
    line->selectAll();
    QTest::keyClicks(line, u"x"_s);
    EXPECT_EQ(editor.value(u"f1"_s), u"1"_s);
    QTRY_VERIFY_WITH_TIMEOUT(
        line->accessibleDescription().startsWith("expected a decimal number"_L1), 2000);
    EXPECT_EQ(editor.modified, 0);
}

TEST(PanelEdits, AButtonSetsTheDefault)
{
    UndoEditor editor("<readCSV fileName='a' separator=';' header='0'/>");
    const auto buttonOf = [&](const QString &name) {
        const QList<QToolButton *> buttons = editor.panel->findChildren<QToolButton *>(u"reset"_s);
        const QString label = fieldOf(editor.panel, name)->focusProxy()->accessibleName();
        return *std::find_if(buttons.begin(), buttons.end(), [&](const QToolButton *button) {
            return button->accessibleName().contains(label);
        });
    };
    EXPECT_FALSE(buttonOf(u"types"_s)->isVisible());
    for (const QString &name : {u"separator"_s, u"header"_s}) {
        ASSERT_TRUE(buttonOf(name)->isVisible()) << name.toStdString();
        QTest::mouseClick(buttonOf(name), Qt::LeftButton);
        EXPECT_FALSE(buttonOf(name)->isVisible());
    }
    EXPECT_EQ(editor.value(u"separator"_s), u","_s);
    EXPECT_EQ(editor.value(u"header"_s), u"1"_s);
    // The field shows the default, and each reset is a step.
    auto *const line = fieldOf(editor.panel, u"separator"_s)->findChild<QLineEdit *>();
    EXPECT_EQ(line->text(), u","_s);
    EXPECT_TRUE(editor.undo());
    EXPECT_EQ(editor.value(u"header"_s), u"0"_s);
    EXPECT_TRUE(buttonOf(u"header"_s)->isVisible());
    EXPECT_TRUE(editor.undo());
    EXPECT_EQ(line->text(), u";"_s);
    // The context menu of a field has it too, and says what the default is.
    const QList<QAction *> actions = fieldOf(editor.panel, u"separator"_s)->actions();
    ASSERT_EQ(actions.size(), 1);
    EXPECT_EQ(actions.first()->text(), u"Reset to the default: ,"_s);
    actions.first()->trigger();
    EXPECT_EQ(editor.value(u"separator"_s), u","_s);
    EXPECT_FALSE(actions.first()->isEnabled());
}

TEST(PanelEdits, AValueThatWasRejectedIsResetToo)
{
    UndoEditor editor("<writeSAS fileName='f' autoWidth='1'/>");
    QWidget *const field = fieldOf(editor.panel, u"f1"_s);
    auto *const line = field->findChild<QLineEdit *>();
    line->selectAll();
    QTest::keyClicks(line, u"x"_s);
    field->actions().first()->trigger();
    EXPECT_EQ(line->text(), u"1"_s);
    EXPECT_EQ(editor.modified, 0);
}

TEST(PanelEdits, FieldsThatTheModeIgnoresAreDisabledAndSayWhy)
{
    const UndoEditor editor("<writeExcel/>");
    QWidget *const source = fieldOf(editor.panel, u"fileNameSource"_s);
    EXPECT_FALSE(source->isEnabled());
    const auto hasNote = [](const Panel &panel, const QString &text) {
        const QList<QLabel *> labels = panel->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel *label) { return label->text() == text; });
    };
    EXPECT_TRUE(hasNote(editor.panel, u"Used only when \u201cWhat to do\u201d has another value"_s))
        << "its choices are long";
    QTest::keyClick(fieldOf(editor.panel, u"mode"_s)->focusProxy(), Qt::Key_End);
    EXPECT_TRUE(source->isEnabled());
    EXPECT_EQ(editor.value(u"mode"_s), u"4"_s);
    const UndoEditor writer("<writeJSON/>");
    EXPECT_TRUE(hasNote(writer.panel, u"Used only when \u201cWrite all rows\u201d is off"_s));
    const UndoEditor xml("<writeXML indentStart='2'/>");
    EXPECT_FALSE(fieldOf(xml.panel, u"indentStart"_s)->isEnabled());
    // One of three lists is enough.
    EXPECT_FALSE(fieldOf(editor.panel, u"dateWidths"_s)->isEnabled());
    const UndoEditor times("<writeExcel><ToTime><s>t</s></ToTime></writeExcel>");
    EXPECT_TRUE(fieldOf(times.panel, u"dateWidths"_s)->isEnabled());
}

TEST(PanelEdits, TwoWritersOfOneFileAreShownBelowTheField)
{
    UndoEditor editor("<writeJSON fileName='a.json'/>");
    editor.graph.actions.append({u"b"_s, *XMLNode::parse("<writeXML fileName='b.json'/>")});
    MainUI::EditorHooks hooks;
    hooks.editedGraph = [&editor] { return &editor.graph; };
    hooks.edited = [&editor](ActionItem *item, const ParameterEdit &edit) {
        editor.history.record(item, edit);
    };
    MainUI::setEditorHooks(hooks);
    auto *const line = fieldOf(editor.panel, u"fileName"_s)->findChild<QLineEdit *>();
    line->setFocus();
    line->selectAll();
    QTest::keyClicks(line, u"b.json"_s);
    QTRY_VERIFY_WITH_TIMEOUT(
        line->accessibleDescription().startsWith("the actions 'a' and 'b' create the same file"_L1),
        10000);
    QTest::keyClick(line, Qt::Key_Home);
    QTest::keyClicks(line, u"c"_s);
    QTRY_VERIFY_WITH_TIMEOUT(line->accessibleDescription().startsWith("JSON file"_L1), 10000);
}

TEST(PanelEdits, AMissingFileIsReportedWithoutWaitingForTheDrive)
{
    const QTemporaryDir folder;
    const QString archive = folder.filePath(u"a.zip"_s);
    ASSERT_TRUE(QFile(archive).open(QIODevice::WriteOnly));
    const UndoEditor editor("<readJSON fileName=''/>");
    auto *const line = fieldOf(editor.panel, u"fileName"_s)->findChild<QLineEdit *>();
    const QAction *const mark = line->actions().value(0);
    line->setFocus();
    QTest::keyClicks(line, archive + u"x"_s);
    QTRY_VERIFY_WITH_TIMEOUT(line->accessibleDescription().contains("does not exist"_L1), 10000);
    EXPECT_EQ(mark->toolTip(), u"The file cannot be read"_s);
    QTest::keyClick(line, Qt::Key_Backspace);
    QTest::keyClicks(line, u"@b.json"_s);
    QTRY_VERIFY_WITH_TIMEOUT(mark->toolTip() == "The file exists"_L1, 10000);
    EXPECT_FALSE(line->accessibleDescription().contains("does not exist"_L1));
}

TEST(PanelEdits, TypingInOneFieldIsOneStep)
{
    UndoEditor editor("<writeJSON fileName='' createDir='0'/>");
    auto *const line = fieldOf(editor.panel, u"fileName"_s)->findChild<QLineEdit *>();
    line->setFocus();
    QTest::keyClicks(line, u"abc"_s);
    QTest::mouseClick(fieldOf(editor.panel, u"createDir"_s)->focusProxy(), Qt::LeftButton, {},
                      {8, 8});
    line->setFocus();
    QTest::keyClicks(line, u"d"_s);
    EXPECT_EQ(editor.value(u"fileName"_s), u"abcd"_s);
    EXPECT_EQ(editor.modified, 5);
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(line->text(), u"abc"_s);
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.value(u"createDir"_s), u"0"_s);
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(line->text(), QString());
    EXPECT_FALSE(editor.undo());

    const EditHistory::Step *const again = editor.history.redo();
    ASSERT_NE(again, nullptr);
    restoreParameters(*editor.action, again->after);
    EXPECT_EQ(editor.value(u"fileName"_s), u"abc"_s);
    line->setFocus();
    QTest::keyClicks(line, u"x"_s);
    EXPECT_EQ(editor.history.redo(), nullptr) << "the steps that were undone are of another state";
}

TEST(PanelEdits, WhatTheActionDoesNotKnowSurvives)
{
    const QByteArray levels = "<Level initialPath='a' subtagName='b' future='1'>\n      "
                              "<e name='n' path='p'/>\n    </Level>";
    UndoEditor editor("<readJSON version='4' fileName='f' colour='red'><Later x='1'>t</Later>" +
                      levels + "</readJSON>");
    QTest::mouseClick(fieldOf(editor.panel, u"outputSubTags"_s)->findChild<QCheckBox *>(),
                      Qt::LeftButton, {}, {8, 8});
    const QByteArray document = editor.graph.toXml();
    for (const QByteArray &part :
         {QByteArray("colour='red'"), QByteArray("<Later x='1'>t</Later>"),
          QByteArray("future='1'"), QByteArray("outputSubTags='1'"), QByteArray("fileName='f'")}) {
        EXPECT_TRUE(document.contains(part)) << document.constData();
    }
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.value(u"outputSubTags"_s), u"0"_s);
    EXPECT_FALSE(editor.graph.toXml().contains("outputSubTags"));
}

TEST(PanelEdits, F1AndTheButtonOpenTheHelpPage)
{
    QStringList pages;
    setHelpOpener([&pages](const QString &page, const QString &) { pages << page; });
    const UndoEditor editor("<readJSON/>");
    fieldOf(editor.panel, u"fileName"_s)->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F1);
    EXPECT_EQ(pages.size(), 1);
    setHelpOpener({});
}

TEST(PanelEdits, ShowingAGraphChangesNothing)
{
    int modified = 0;
    MainUI::EditorHooks hooks;
    hooks.modified = [&modified] { ++modified; };
    MainUI::setEditorHooks(hooks);
    int shownPanels = 0;
    for (const QString &file : graphFiles()) {
        const CorvantaGraph::Loaded graph = CorvantaGraph::load(file);
        for (const CorvantaGraph::Action &element :
             graph ? graph->actions : QVector<CorvantaGraph::Action>()) {
            GlobalParameters global;
            const Action action = panels::registry().create(element.parameters, &global);
            if (action == nullptr) {
                continue; // of the host, or of an unknown type on purpose
            }
            const QByteArray before = panels::saved(*action);
            const Panel panel(action->createPanel(nullptr));
            if (panel != nullptr) {
                panel->refresh();
                QApplication::processEvents();
                EXPECT_EQ(panels::saved(*action), before) << file.toStdString();
                ++shownPanels;
            }
        }
    }
    EXPECT_EQ(modified, 0);
    EXPECT_GT(shownPanels, 100);
    MainUI::setEditorHooks({});
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
