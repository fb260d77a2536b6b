// Each editor by itself: what it shows, and what it reports for keys and the mouse.
#include "panels/basic_editors.h"
#include "panels/colors.h"
#include "panels/column_picker.h"
#include "panels/file_field.h"
#include "panels/glyphs.h"
#include "panels/mnemonics.h"
#include "panels/note_label.h"
#include "tests/panels/panel_keys.h"
#include "tests/panels/panel_support.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDropEvent>
#include <QFocusEvent>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QToolButton>
#include <QToolTip>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

using Type = ParameterInfo::Type;

/// An editor that is shown, and what it has reported.
class Editor
{
public:
    template <class Make>
    Editor(const ParameterInfo &info, Make make)
        : m_action(panels::fromXml("<writeJSON/>", &m_global))
        , m_editor(make(FieldContext{m_action.get(), &panels::parametersOf(m_action), info,
                                     u"Name"_s, u"What it is."_s}))
    {
        m_editor->setEdited([this](const QString &value, FieldEditor::Edit) { reported << value; });
        m_editor->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_editor.get()));
    }

    FieldEditor *operator->() const { return m_editor.get(); }
    QWidget *main() const { return m_editor->focusProxy(); }
    template <class T> T *find(const QString &name = {}) const
    {
        return m_editor->findChild<T *>(name);
    }
    /// The last reported value; null if there is none.
    QString last() const { return reported.isEmpty() ? QString() : reported.last(); }

    QStringList reported;

private:
    GlobalParameters m_global;
    panels::Action m_action;
    std::unique_ptr<FieldEditor> m_editor;
};

ParameterInfo infoOf(Type type)
{
    ParameterInfo info;
    info.name = u"attribute"_s;
    info.type = type;
    info.low = 0;
    info.high = 1000;
    return info;
}

Editor editorOf(const ParameterInfo &info)
{
    return Editor(info, [](const FieldContext &context) { return makeEditor(context); });
}

QStringList textsOf(const QListWidget &list)
{
    QStringList texts;
    for (int i = 0; i < list.count(); ++i) {
        texts << list.item(i)->text();
    }
    return texts;
}

/// The user goes on to another field.
void leave(QWidget *control)
{
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(control, &out);
}

} // namespace

TEST(Editors, ALineReportsEachLetterAndKeepsItsCursor)
{
    const Editor editor = editorOf(infoOf(Type::Text));
    editor->showValue(u"ac"_s);
    auto *const line = editor.find<QLineEdit>();
    line->setCursorPosition(1);
    QTest::keyClicks(line, u"b"_s);
    editor->showValue(u"abc"_s); // as the panel does after an edit
    QTest::keyClicks(line, u"B"_s);
    EXPECT_EQ(editor.reported, (QStringList{u"abc"_s, u"abBc"_s}));
    EXPECT_EQ(line->accessibleName(), u"Name"_s);
    EXPECT_TRUE(line->toolTip().contains("attribute"_L1)) << "the name in the file";
}

TEST(Editors, ANumberHasItsRangeAndUnit)
{
    ParameterInfo info = infoOf(Type::Integer);
    info.unit = u"MB"_s;
    const Editor editor = editorOf(info);
    editor->showValue(u"7"_s);
    EXPECT_TRUE(editor.reported.isEmpty()) << "showing is not editing";
    auto *const box = editor.find<QSpinBox>();
    EXPECT_EQ(box->text(), u"7 MB"_s);
    QTest::keyClick(box, Qt::Key_Up);
    EXPECT_EQ(editor.last(), u"8"_s);
    box->selectAll();
    QTest::keyClicks(box, u"1200"_s);
    EXPECT_EQ(editor.last(), u"120"_s) << "1200 is out of range";
}

TEST(Editors, ASpecialNumberIsShownAsItsMeaning)
{
    ParameterInfo info = infoOf(Type::Integer);
    info.low = -1;
    info.lowMeaning = u"no limit"_s;
    const Editor editor = editorOf(info);
    editor->showValue(u"-1"_s);
    auto *const box = editor.find<QSpinBox>();
    EXPECT_EQ(box->text(), u"no limit"_s);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(box)->text(QAccessible::Value), u"no limit"_s);
    box->selectAll();
    QTest::keyClicks(box, u"7"_s);
    EXPECT_EQ(editor.last(), u"7"_s);
    box->selectAll();
    QTest::keyClicks(box, u"-1"_s);
    EXPECT_EQ(editor.last(), u"-1"_s);
    EXPECT_EQ(shownValue(info, u"-1"_s), u"\u201cno limit\u201d"_s) << "in tool tips";
    // A number that is too great for a spin box.
    info.high = std::numeric_limits<qint64>::max();
    const Editor line = editorOf(info);
    line->showValue(u"-1"_s);
    auto *const text = line.find<QLineEdit>();
    EXPECT_EQ(text->text(), QString());
    EXPECT_EQ(text->placeholderText(), u"no limit"_s);
    QTest::keyClicks(text, u"7"_s);
    EXPECT_EQ(line.last(), u"7"_s);
    QTest::keyClick(text, Qt::Key_Backspace);
    EXPECT_EQ(line.last(), u"-1"_s);
}

TEST(Editors, TheWheelChangesOnlyTheFieldWithTheFocus)
{
    const Editor editor = editorOf(infoOf(Type::Integer));
    editor->showValue(u"7"_s);
    QWheelEvent wheel(QPointF(5, 5), editor.main()->mapToGlobal(QPointF(5, 5)), {}, {0, 120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    editor.main()->clearFocus();
    QApplication::sendEvent(editor.main(), &wheel);
    EXPECT_TRUE(editor.reported.isEmpty());
    EXPECT_FALSE(wheel.isAccepted()) << "the panel scrolls instead";
}

TEST(Editors, AChoiceExplainsItselfAndKeepsOtherNumbers)
{
    ParameterInfo info = infoOf(Type::Integer);
    info.choices = QStringList{u"fast"_s, u"small"_s};
    info.explanations = QStringList{u"Needs space."_s, u"Needs time."_s};
    info.defaultValue = u"-1"_s; // not a choice: the action decides
    const Editor editor = editorOf(info);
    auto *const box = editor.find<QComboBox>();
    editor->showValue(u"0"_s);
    EXPECT_EQ(editor.find<NoteLabel>()->text(), u"Needs space."_s);
    QTest::keyClick(box, Qt::Key_Down);
    EXPECT_EQ(editor.last(), u"1"_s);
    EXPECT_EQ(editor.find<NoteLabel>()->text(), u"Needs time."_s);
    editor->showValue(u"17"_s);
    EXPECT_EQ(box->currentData().toString(), u"17"_s);
    QTest::keyClick(box, Qt::Key_Home);
    EXPECT_EQ(editor.last(), u"-1"_s);
}

TEST(Editors, AFlagIsToggledByItsBoxItsLabelAndTheKeyboard)
{
    const Editor editor = editorOf(infoOf(Type::Flag));
    QTest::mouseClick(editor.find<QCheckBox>(), Qt::LeftButton, {}, {8, 8});
    QTest::mouseClick(editor.find<QLabel>(), Qt::LeftButton);
    QTest::keyClick(editor.main(), Qt::Key_Space);
    EXPECT_EQ(editor.reported, (QStringList{u"1"_s, u"0"_s, u"1"_s}));
}

TEST(Editors, ATextOfSeveralLinesLeavesTabToTheFocus)
{
    ParameterInfo info = infoOf(Type::Text);
    info.isMultiLine = true;
    const Editor editor = editorOf(info);
    QTest::keyClicks(editor.main(), u"<a>"_s);
    QTest::keyClick(editor.main(), Qt::Key_Return);
    EXPECT_EQ(editor.last(), u"<a>\n"_s);
    EXPECT_TRUE(editor.find<QPlainTextEdit>()->tabChangesFocus());
}

TEST(Editors, AFloatFormatShowsAnExampleOrAProblem)
{
    const Editor editor(infoOf(Type::Text),
                        [](const FieldContext &context) { return new FloatFormatEditor(context); });
    editor->showValue(u"%.2f"_s);
    EXPECT_TRUE(editor.find<NoteLabel>()->text().endsWith("1234.57"_L1));
    EXPECT_EQ(editor->problem().text, QString());
    QTest::keyClicks(editor.main(), u"%s"_s);
    EXPECT_EQ(editor->problem().text,
              u"expected a printf format with one conversion, for example %.2f"_s);
    EXPECT_EQ(editor.find<NoteLabel>()->text(), QString());
}

TEST(Editors, AListIsEditedByKeys)
{
    const Editor editor = editorOf(infoOf(Type::Strings));
    editor->showValue(u"b\nc"_s);
    QTest::keyClicks(editor.find<QLineEdit>(), u"a"_s);
    QTest::keyClick(editor.find<QLineEdit>(), Qt::Key_Return);
    EXPECT_EQ(editor.last(), u"b\nc\na"_s);
    auto *const list = static_cast<QListWidget *>(editor.main());
    QTest::keyClick(list, Qt::Key_Up, Qt::ControlModifier);
    QTest::keyClick(list, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(editor.last(), u"a\nb\nc"_s);
    list->setCurrentRow(1);
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(editor.last(), u"a\nc"_s);
    // A text without Enter is not lost, and an empty one is not added.
    QTest::keyClicks(editor.find<QLineEdit>(), u"d"_s);
    leave(editor.find<QLineEdit>());
    leave(editor.find<QLineEdit>());
    EXPECT_EQ(editor.last().split(u'\n').size(), 3);
    EXPECT_TRUE(editor.last().contains(u'd'));
}

TEST(Editors, ColumnsArePickedAndUnknownOnesKept)
{
    panels::setInputColumns({u"city"_s, u"country"_s, u"date"_s});
    const Editor editor(infoOf(Type::Strings),
                        [](const FieldContext &context) { return new ColumnPicker(context); });
    editor->showValue(u"date\nold"_s);
    auto *const chosen = static_cast<QListWidget *>(editor.main());
    const QList<QListWidget *> lists = editor->findChildren<QListWidget *>();
    QListWidget *const offered = lists[0] == chosen ? lists[1] : lists[0];
    EXPECT_EQ(textsOf(*offered), (QStringList{u"city"_s, u"country"_s}));
    EXPECT_FALSE(chosen->item(1)->icon().isNull()) << "old is marked";
    EXPECT_EQ(editor->problem().text, u"the input has no column 'old'"_s);
    EXPECT_EQ(editor->problem().severity, ParameterProblem::Severity::Warning);

    // The search finds one column, which Enter adds.
    QTest::keyClicks(editor.find<QLineEdit>(), u"COUN"_s);
    EXPECT_EQ(textsOf(*offered), QStringList{u"country"_s});
    leave(editor.find<QLineEdit>());
    EXPECT_EQ(chosen->count(), 2) << "a search is no edit";
    QTest::keyClick(editor.find<QLineEdit>(), Qt::Key_Return);
    EXPECT_EQ(editor.last(), u"date\nold\ncountry"_s);
    const QRect city = offered->visualItemRect(offered->item(0));
    QTest::mouseClick(offered->viewport(), Qt::LeftButton, {}, city.center());
    QTest::mouseDClick(offered->viewport(), Qt::LeftButton, {}, city.center());
    EXPECT_EQ(editor.last(), u"date\nold\ncountry\ncity"_s);
    EXPECT_EQ(offered->count(), 0);

    editor->showValue(u"a\nb\nc\nd"_s);
    EXPECT_EQ(editor->problem().text,
              u"4 columns are not in the input, for example 'a', 'b', 'c'"_s);
    panels::setInputColumns({});
    editor->refreshContext();
    EXPECT_EQ(editor->problem().text, QString()) << "nothing is known";
    EXPECT_FALSE(offered->isVisible());
}

TEST(Editors, ColumnsAreFoundInSortKeysAndPairs)
{
    panels::setInputColumns({u"city"_s, u"-date"_s, u"a=b"_s, u"x"_s});
    const Editor sort(infoOf(Type::Strings),
                      [](const FieldContext &context) { return new SortKeyPicker(context); });
    sort->showValue(u"-city\n-date\n-old"_s);
    EXPECT_EQ(sort->problem().text, u"the input has no column 'old'"_s);
    auto *const keys = static_cast<QListWidget *>(sort.main());
    EXPECT_TRUE(keys->item(0)->icon().isNull());
    EXPECT_FALSE(keys->item(2)->icon().isNull()) << "-old is marked";

    const Editor pairs(infoOf(Type::Strings),
                       [](const FieldContext &context) { return new ColumnPairPicker(context); });
    pairs->showValue(u"x=y\na=b=c\ncity\n-date=old"_s);
    EXPECT_EQ(pairs->problem().text, QString());
    pairs->showValue(u"y=x"_s);
    EXPECT_EQ(pairs->problem().text, u"the input has no column 'y'"_s);
    panels::setInputColumns({});
}

TEST(Editors, ATextIsTypedOverWhenItsColumnIsAdded)
{
    panels::setInputColumns({u"city"_s, u"a=b"_s});
    const auto added = [](const QString &text, int row, const QString &typed) {
        const Editor editor(infoOf(Type::Strings), [&](const FieldContext &context) {
            return new ColumnTextPicker(context, text);
        });
        auto *const list = static_cast<QListWidget *>(editor.main());
        const QList<QListWidget *> lists = editor->findChildren<QListWidget *>();
        QListWidget *const offered = lists[lists[0] == list ? 1 : 0];
        offered->setCurrentRow(row);
        QTest::keyClick(offered, Qt::Key_Return);
        QApplication::processEvents(); // what follows an insertion must not reset the line
        auto *const line = list->viewport()->findChild<QLineEdit *>();
        EXPECT_NE(line, nullptr);
        QTest::keyClicks(line, typed);
        QTest::keyClick(line, Qt::Key_Return);
        QApplication::processEvents();
        return editor.last();
    };
    EXPECT_EQ(added({}, 0, u"town"_s), u"city=town"_s);
    EXPECT_EQ(added(u"F"_s, 1, u"K"_s), u"a=b=K"_s);
    panels::setInputColumns({});
}

TEST(Editors, ALineThatIsBeingEditedIsKeptWhenThePanelIsDeleted)
{
    panels::setInputColumns({u"city"_s});
    const panels::Action action =
        panels::fromXml("<select><rename><s>city=town</s></rename></select>");
    panels::Panel panel = panels::shown(action);
    auto *const list =
        static_cast<QListWidget *>(panel->findChild<QWidget *>(u"rename"_s)->focusProxy());
    list->editItem(list->item(0));
    QTest::keyClicks(list->viewport()->findChild<QLineEdit *>(), u"city=place"_s);
    panel.reset();
    EXPECT_EQ(panels::valueOf(action, u"rename"_s), u"city=place"_s);
    panels::setInputColumns({});
}

TEST(Editors, AColumnIsTypedOrChosen)
{
    panels::setInputColumns({u"city"_s, u"date"_s});
    const Editor editor(infoOf(Type::Text),
                        [](const FieldContext &context) { return new ColumnField(context); });
    editor->showValue(u"town"_s);
    EXPECT_EQ(editor->problem().text, u"the input has no column 'town'"_s);
    auto *const box = editor.find<QComboBox>();
    EXPECT_EQ(box->count(), 2);
    box->lineEdit()->selectAll();
    QTest::keyClicks(box, u"${v}"_s);
    EXPECT_EQ(editor.last(), u"${v}"_s);
    EXPECT_EQ(editor->problem().text, QString()) << "the variable may be any column";
    panels::setInputColumns({});
}

TEST(Editors, AFileIsMarkedDroppedAndMadeRelative)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(u"there.json"_s);
    ASSERT_TRUE(QFile(name).open(QIODevice::WriteOnly));
    ParameterInfo info = infoOf(Type::Text);
    info.file = ParameterInfo::File::Output;
    const Editor editor = editorOf(info);
    auto *const line = editor.find<QLineEdit>();
    const QAction *const mark = line->actions().value(0);
    editor->showValue(name);
    // The file is looked up in the background.
    QTRY_COMPARE_WITH_TIMEOUT(mark->toolTip(), u"The file exists"_s, 10000);
    QTest::keyClicks(line, u"x"_s);
    QTRY_COMPARE_WITH_TIMEOUT(mark->toolTip(), u"The file does not exist yet"_s, 10000);
    editor->showValue(u"${graphDi}"_s);
    EXPECT_FALSE(mark->isVisible()) << "not known";

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(name)});
    QDragEnterEvent enter({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(line, &enter);
    QDropEvent drop({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(line, &drop);
    EXPECT_EQ(editor.last(), name) << "not below the folder of the graph";
    EXPECT_EQ(line->text(), name);

    // The menu of the button inserts variables at the cursor.
    line->setCursorPosition(0);
    QMenu *const menu = editor.find<QToolButton>(u"browse"_s)->menu();
    Q_EMIT menu->aboutToShow();
    menu->actions().last()->menu()->actions().first()->trigger();
    EXPECT_EQ(editor.last(), u"${graphDir}"_s + name);
}

TEST(Editors, AMemberOfAnArchiveIsChosenFromItsList)
{
    const QTemporaryDir folder;
    const QString archive = folder.filePath(u"a.zip"_s); // as every Office document
    ASSERT_TRUE(QFile::copy(QStringLiteral(CORVANTA_SOURCE_DIR "/examples/documents/report.docx"),
                            archive));
    ParameterInfo info = infoOf(Type::Text);
    info.file = ParameterInfo::File::Input;
    const Editor editor = editorOf(info);
    editor->showValue(archive + u"@old.xml"_s);
    QMenu *const menu = editor.find<QToolButton>(u"browse"_s)->menu();
    Q_EMIT menu->aboutToShow();
    QStringList offered;
    QTimer::singleShot(0, [&] {
        auto *const dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        offered = dialog->comboBoxItems();
        dialog->setTextValue(u"word/document.xml"_s);
        dialog->accept();
    });
    menu->actions()[1]->trigger();
    EXPECT_TRUE(offered.contains(u"word/document.xml"_s));
    EXPECT_EQ(editor.last(), archive + u"@word/document.xml"_s);
}

TEST(Editors, AWrittenFileIsOpenedAndNeverRun)
{
    const QTemporaryDir folder;
    QTextBrowser desktop; // takes the place of the program that the desktop would start
    QDesktopServices::setUrlHandler(u"file"_s, &desktop, "setSource");
    ParameterInfo info = infoOf(Type::Text);
    info.file = ParameterInfo::File::Output;
    const Editor editor = editorOf(info);
    auto *const open = editor.find<QToolButton>(u"open"_s);
    editor->showValue(u"${unknown}.json"_s);
    EXPECT_FALSE(open->isEnabled());
    for (const QString &name : {u"a.json"_s, u"a.sh"_s}) {
        const QString file = folder.filePath(name);
        editor->showValue(file);
        QTest::mouseClick(open, Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(QToolTip::text(), u"The file does not exist yet"_s, 10000);
        QToolTip::hideText();
        QFile written(file);
        ASSERT_TRUE(written.open(QIODevice::WriteOnly) && written.write("[]") == 2);
        written.close();
        QTest::mouseClick(open, Qt::LeftButton); // as after a run
        const QString opened = name.endsWith("json"_L1) ? file : folder.path();
        QTRY_COMPARE_WITH_TIMEOUT(desktop.source(), QUrl::fromLocalFile(opened), 10000);
    }
    QDesktopServices::unsetUrlHandler(u"file"_s);
}

TEST(Editors, AStructureIsEditedInATreeAndKeepsWhatItDoesNotKnow)
{
    ParameterInfo path = infoOf(Type::Text);
    path.name = u"path"_s;
    path.saveAlways = true;
    ParameterInfo columns = infoOf(Type::Structure);
    columns.name = columns.itemElement = u"e"_s;
    columns.members = {path};
    ParameterInfo levels = infoOf(Type::Structure);
    levels.name = u"Levels"_s;
    levels.itemElement = u"Level"_s;
    levels.members = {path, columns};
    const Editor editor = editorOf(levels);
    editor->showValue(u"<Levels><Level path='a' new='1'><e path='b'/><x/></Level></Levels>"_s);
    QTest::keyClicks(editor.find<QWidget>(u"path"_s)->focusProxy(), u"<"_s);
    EXPECT_EQ(editor.last(), u"<Levels><Level path='a&lt;' new='1'><x></x><e path='b'></e></Level>"
                             "</Levels>"_s);
    auto *const tree = static_cast<QTreeWidget *>(editor.main());
    QTest::keyClick(tree, Qt::Key_Down); // to the column
    QTest::keyClick(tree, Qt::Key_Insert);
    QTest::keyClick(tree, Qt::Key_Up, Qt::ControlModifier);
    EXPECT_TRUE(editor.last().contains("<e path=''></e><e path='b'></e>"_L1))
        << editor.last().toStdString();
    QTest::keyClick(tree, Qt::Key_Delete);
    QTest::keyClick(tree, Qt::Key_Delete);
    EXPECT_TRUE(editor.last().endsWith("<x></x></Level></Levels>"_L1))
        << editor.last().toStdString();
    QTest::keyClick(tree, Qt::Key_Delete);
    EXPECT_EQ(editor.last(), QString());
}

TEST(Editors, MnemonicsAreUnique)
{
    Mnemonics mnemonics;
    EXPECT_EQ(mnemonics.assign(u"File"_s), u"&File"_s);
    EXPECT_EQ(mnemonics.assign(u"File format"_s), u"F&ile format"_s) << "f is used";
    EXPECT_EQ(mnemonics.assign(u"A & B"_s), u"&A && B"_s);
    EXPECT_EQ(mnemonics.assign(u"fi"_s), u"fi"_s) << "nothing is free";
}

TEST(Editors, RemarksAndProblemsAreReadableOnAnyBackground)
{
    for (const auto colors : {panels::Colors::Light, panels::Colors::Dark}) {
        const QPalette palette = panels::paletteOf(colors);
        for (const QColor &color :
             {remarkColor(palette), warningColor(palette), errorColor(palette)}) {
            EXPECT_GE(contrastOf(color, palette.color(QPalette::Window)), kTextContrast);
        }
        EXPECT_GE(contrastOf(outlineColor(palette), palette.color(QPalette::Window)),
                  kOutlineContrast);
        const QPalette readable = readablePalette(palette);
        const auto contrast = [&](QPalette::ColorRole role, QPalette::ColorRole background) {
            return contrastOf(readable.color(QPalette::Disabled, role),
                              readable.color(QPalette::Disabled, background));
        };
        EXPECT_GE(contrast(QPalette::WindowText, QPalette::Window), kTextContrast);
        EXPECT_GE(contrast(QPalette::Text, QPalette::Base), kTextContrast);
        EXPECT_GE(contrast(QPalette::PlaceholderText, QPalette::Base), kTextContrast);
    }
    EXPECT_NEAR(contrastOf(Qt::black, Qt::white), 21, 0.01);
    EXPECT_GE(contrastOf(readableOn(Qt::gray, Qt::gray), Qt::gray), kTextContrast);
    // One step is enough, and keeps the colour close to the wanted one.
    EXPECT_LT(contrastOf(readableOn(Qt::white, QColor(0x77, 0x77, 0x77)), Qt::white), 5);
}

TEST(Notes, TheTextIsBesideTheMark)
{
    NoteLabel note;
    note.setNote(NoteLabel::Kind::Error, u"text"_s);
    EXPECT_GT(note.contentsMargins().left(), scaledToFont(14, note.fontMetrics()));
    note.setNote(NoteLabel::Kind::Remark, u"text"_s);
    EXPECT_EQ(note.contentsMargins().left(), 0);
}
