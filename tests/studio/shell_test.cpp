// The window without its canvas: palette, properties, outline, files, shortcuts, settings.
#include "corvanta/action_registry.h"
#include "corvanta/edit/translation.h"
#include "studio/canvas/canvas_view.h"
#include "studio/canvas/catalogue.h"
#include "studio/run/run_controller.h"
#include "studio/shell/commands.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/main_window.h"
#include "studio/shell/preferences/appearance.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/views/examples.h"
#include "studio/shell/views/message_bar.h"
#include "studio/shell/workspace.h"
#include "tests/studio/shell_window.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCursor>
#include <QTextEdit>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>
#include <QUrl>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;
using namespace corvanta::studio::test;

namespace {

TEST(Catalogue, FindsByNameKeywordTagAndDescription)
{
    const Catalogue catalogue(registry());
    const auto first = [&](const QString &text) {
        const auto found = catalogue.search(text);
        return found.isEmpty() ? QString() : found.first()->type;
    };
    EXPECT_EQ(catalogue.entries().size(), qsizetype(registry().prototypes().size()));
    EXPECT_EQ(first(u"readjs"_s), u"readJSON"_s);
    EXPECT_EQ(first(u"dbase"_s), u"ReadXBF"_s); // keyword
    EXPECT_EQ(first(u"pptx chart"_s), u"writeReport"_s);
    EXPECT_EQ(first(u"jsonl"_s), u"readJSON"_s); // file extension
    EXPECT_EQ(first(u"uncommon legacy"_s), QString());
    EXPECT_EQ(catalogue.search(u"uncommon"_s).size(), 4); // tag
    EXPECT_EQ(first(u"expression is true"_s), u"filter"_s);
    EXPECT_EQ(first(u"no such thing"_s), QString());
    EXPECT_EQ(catalogue.find(u"writeExcel"_s)->category, u"Write files"_s);
    EXPECT_EQ(catalogue.find(u"join"_s)->category, u"Change tables"_s);
}

TEST_F(Shell, PaletteAddsByKeysAndChainsActions)
{
    trigger("file.new");
    trigger("graph.add");
    auto &search = child<QLineEdit>("paletteSearch");
    EXPECT_TRUE(search.hasFocus());
    QTest::keyClicks(&search, u"readcsv"_s);
    QTest::keyClick(&search, Qt::Key_Return);
    QTest::keyClicks(&search, u"sort"_s); // replaces the text that was found
    QTest::keyClick(&search, Qt::Key_Down);
    auto &tree = child<QTreeView>("paletteTree");
    EXPECT_TRUE(tree.hasFocus());
    QTest::keyClick(&tree, Qt::Key_Return);
    ASSERT_EQ(document().ids().size(), 2);
    EXPECT_EQ(document().links().size(), 1); // after the selected action
    EXPECT_EQ(settings.recentActions(), (QStringList{u"sort"_s, u"readCSV"_s}));
    const auto *const model = tree.model();
    std::unique_ptr<QMimeData> dragged(model->mimeData({tree.currentIndex()}));
    EXPECT_EQ(dragged->data(u"application/x-corvanta-action"_s), "sort");
}

TEST_F(Shell, AFirstWindowFitsOnTheScreen)
{
    const QSize room = window().screen()->availableSize();
    EXPECT_EQ(window().size().boundedTo(room), room.boundedTo(QSize(1280, 800)));
    EXPECT_LE(window().width(), qMax(room.width(), window().minimumSizeHint().width()));
}

TEST_F(Shell, PaletteKeepsItsWidth)
{
    auto &tree = child<QTreeView>("paletteTree");
    for (const QSize size : {QSize(1300, 1000), QSize(900, 500)}) { // without and with a scroll bar
        window().resize(size);
        QTest::qWait(20);
        EXPECT_EQ(tree.header()->length(), tree.viewport()->width());
    }
}

TEST_F(Shell, FavouritesAreListedFirst)
{
    settings.setFavouriteAction(u"join"_s, true);
    settings.setFavouriteAction(u"unknownType"_s, true);
    const auto *const model = child<QTreeView>("paletteTree").model();
    EXPECT_EQ(model->index(0, 0).data().toString(), u"Favourites"_s);
    EXPECT_EQ(model->rowCount(model->index(0, 0)), 1);
}

TEST_F(Shell, FavouritesAreChosenByKeysAndKept)
{
    const auto toggle = [&](const QString &type) {
        auto &tree = child<QTreeView>("paletteTree");
        child<QLineEdit>("paletteSearch").setText(type);
        QTimer::singleShot(0, [] {
            for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}) {
                QTest::keyClick(QApplication::activePopupWidget(), key);
            }
        });
        const QPoint place = tree.inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        // What the menu key sends.
        QContextMenuEvent event(QContextMenuEvent::Keyboard, place, tree.mapToGlobal(place));
        QApplication::sendEvent(&tree, &event);
    };
    toggle(u"join"_s);
    toggle(u"sort"_s);
    EXPECT_EQ(Settings(path(u"studio.ini"_s)).favouriteActions(),
              (QStringList{u"join"_s, u"sort"_s}));
    shown.reset();
    const auto *const model = child<QTreeView>("paletteTree").model();
    EXPECT_EQ(model->rowCount(model->index(0, 0)), 2);
    toggle(u"join"_s);
    EXPECT_EQ(settings.favouriteActions(), QStringList{u"sort"_s});
}

TEST_F(Shell, PropertiesEditNameCommentAndPanelAsSteps)
{
    open();
    canvas().select({u"table"_s});
    auto &name = child<QLineEdit>("actionName");
    EXPECT_EQ(name.text(), u"table"_s);
    name.setFocus();
    name.selectAll();
    QTest::keyClicks(&name, u"book"_s);
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_FALSE(child<QLabel>("actionNameProblem").text().isEmpty()); // the name is taken
    name.selectAll();
    QTest::keyClicks(&name, u"orders"_s);
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_TRUE(document().contains(u"orders"_s));
    auto &comment = child<QPlainTextEdit>("actionComment");
    QTest::keyClicks(&comment, u"all"_s);
    EXPECT_EQ(document().comment(u"orders"_s), u"all"_s);
    auto &file = child<QWidget>("fileName");
    auto *const line = file.findChild<QLineEdit *>();
    ASSERT_NE(line, nullptr);
    line->selectAll();
    QTest::keyClicks(line, u"b.csv"_s);
    EXPECT_TRUE(document().toXml().contains("fileName='b.csv'")) << document().toXml().data();
    EXPECT_EQ(document().undoStack()->count(), 3);
    trigger("edit.undo");
    EXPECT_EQ(line->text(), u"orders.csv"_s);
    trigger("edit.undo");
    EXPECT_EQ(comment.toPlainText(), QString());
    trigger("edit.undo");
    EXPECT_TRUE(document().contains(u"table"_s));
    EXPECT_EQ(document().toXml(), QByteArray(kGraph));
    EXPECT_FALSE(document().isModified());
}

TEST_F(Shell, UndoInAFieldIsThatOfTheGraph)
{
    open();
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    canvas().select({u"table"_s});
    const auto press = [](Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier | modifiers);
    };
    auto *const line = child<QWidget>("fileName").findChild<QLineEdit *>();
    line->setFocus();
    line->end(false);
    QTest::keyClicks(line, u"x"_s);
    EXPECT_EQ(document().undoStack()->count(), 1);
    // In another field.
    auto &name = child<QLineEdit>("actionName");
    name.setFocus();
    press({});
    EXPECT_EQ(document().toXml(), QByteArray(kGraph));
    EXPECT_EQ(line->text(), u"orders.csv"_s);
    press(Qt::ShiftModifier);
    EXPECT_EQ(line->text(), u"orders.csvx"_s);
    // Letters that are no step yet.
    name.end(false);
    QTest::keyClicks(&name, u"y"_s);
    press({});
    EXPECT_EQ(name.text(), u"table"_s);
    EXPECT_EQ(line->text(), u"orders.csvx"_s);
    // In the field itself.
    line->setFocus();
    press({});
    EXPECT_EQ(line->text(), u"orders.csv"_s);
    EXPECT_FALSE(document().isModified());
}

TEST_F(Shell, SeveralActionsOfOneTypeChangeTogether)
{
    open();
    const QString second = document().duplicate({u"table"_s}).value(0);
    canvas().select({u"table"_s, second});
    auto &header = child<QCheckBox>("header");
    EXPECT_EQ(header.checkState(), Qt::Checked);
    const int steps = document().undoStack()->index();
    header.click();
    EXPECT_EQ(document().toXml().count("header='0'"), 2);
    EXPECT_EQ(document().undoStack()->index(), steps + 1);
    trigger("edit.undo");
    EXPECT_EQ(child<QCheckBox>("header").checkState(), Qt::Checked);
    canvas().select({u"table"_s, u"sort"_s});
    EXPECT_EQ(window().findChild<QCheckBox *>(u"header"_s), nullptr);
}

TEST_F(Shell, VariablesAreEditedInTheirTable)
{
    open();
    trigger("edit.variables");
    auto &table = child<QTableWidget>("variableTable");
    ASSERT_EQ(table.rowCount(), 2);
    table.item(0, 1)->setText(u"2027"_s);
    EXPECT_EQ(document().variables().value(u"year"_s), u"2027"_s);
    table.item(1, 0)->setText(u"month"_s);
    EXPECT_TRUE(document().variables().contains(u"month"_s));
    EXPECT_EQ(table.rowCount(), 3);
    table.item(1, 0)->setText(u"year"_s); // taken
    EXPECT_EQ(document().variables().size(), 2);
    EXPECT_EQ(table.item(0, 0)->text(), u"year"_s);
    table.setCurrentCell(1, 0);
    child<QAction>("removeVariable").trigger();
    EXPECT_EQ(document().variables().keys(), QStringList{u"year"_s});
    while (document().undoStack()->canUndo()) {
        trigger("edit.undo");
    }
    EXPECT_EQ(document().toXml(), QByteArray(kGraph));
}

TEST_F(Shell, OutlineShowsLinksAndSelects)
{
    open();
    auto &outline = child<QTreeWidget>("outline");
    ASSERT_EQ(outline.topLevelItemCount(), 3);
    const QTreeWidgetItem *const sort = outline.topLevelItem(1);
    ASSERT_EQ(sort->childCount(), 2);
    EXPECT_EQ(sort->child(0)->text(0), u"input 0 from table:0"_s);
    EXPECT_EQ(sort->child(1)->text(0), u"output 0 to book:0"_s);
    outline.setCurrentItem(outline.topLevelItem(2));
    EXPECT_EQ(canvas().selectedIds(), QStringList{u"book"_s});
    canvas().select({u"table"_s});
    EXPECT_TRUE(outline.topLevelItem(0)->isSelected());
    outline.topLevelItem(1)->setExpanded(true);
    document().setComment(u"table"_s, u"x"_s); // an edit keeps what the user has opened
    QTest::qWait(10);
    EXPECT_TRUE(outline.topLevelItem(1)->isExpanded());
    EXPECT_FALSE(outline.topLevelItem(0)->isExpanded());
    document().remove({u"sort"_s});
    QTest::qWait(10);
    EXPECT_EQ(outline.topLevelItemCount(), 2);
}

TEST_F(Shell, OutlineSelectsLinksAndNotes)
{
    open();
    document().addNote({300, 300}, u"Prices"_s);
    QTest::qWait(10);
    auto &outline = child<QTreeWidget>("outline");
    outline.setFocus();
    // The output of the first action, which is also the input of the second one.
    outline.topLevelItem(0)->setExpanded(true);
    outline.setCurrentItem(outline.topLevelItem(0)->child(0));
    EXPECT_EQ(canvas().selectedIds(), QStringList());
    EXPECT_EQ(canvas().selectedLinks(), QVector<LinkRef>{document().links().first()});
    EXPECT_TRUE(outline.topLevelItem(1)->child(0)->isSelected());
    trigger("edit.delete");
    EXPECT_EQ(document().ids().size(), 3);
    EXPECT_EQ(document().links().size(), 1);
    QTest::qWait(10);
    outline.setCurrentItem(outline.topLevelItem(3));
    trigger("edit.delete");
    EXPECT_TRUE(document().notes().isEmpty());
    EXPECT_EQ(document().ids().size(), 3);
    const LinkRef rest = document().links().first();
    canvas().select({u"book"_s}, {rest});
    QTest::qWait(10);
    EXPECT_TRUE(outline.topLevelItem(2)->isSelected());
    EXPECT_TRUE(outline.topLevelItem(2)->child(0)->isSelected());
    EXPECT_FALSE(outline.topLevelItem(2)->isExpanded());
}

TEST_F(Shell, ProblemsAreListedWhileEditing)
{
    open();
    auto &problems = child<QTreeWidget>("problems");
    const auto problemOf = [&](const QString &id) {
        return !problems.findItems(id, Qt::MatchExactly).isEmpty();
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return problemOf(u"table"_s); })); // there is no file
    write(u"orders.csv"_s, "a\n1\n");
    document().addAction(u"writeJSON"_s, {});
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !problemOf(u"table"_s) && problemOf(u"writeJSON"_s); }));
    document().addAction(u"filter"_s, {});
    EXPECT_TRUE(QTest::qWaitFor([&] { return problemOf(u"filter"_s); }));
    EXPECT_EQ(problems.findItems(u"filter"_s, Qt::MatchExactly).size(), 2); // empty, and no link
    // The name is not in the text again.
    EXPECT_FALSE(
        problems.findItems(u"'fileName' is required and empty"_s, Qt::MatchExactly, 1).isEmpty());
}

TEST_F(Shell, AsksBeforeChangesAreLost)
{
    open();
    document().setComment(u"table"_s, u"x"_s);
    EXPECT_TRUE(window().windowTitle().startsWith(u"a.graph[*]"_s));
    EXPECT_TRUE(window().isWindowModified());
    answer(u"Cancel"_s);
    EXPECT_FALSE(window().close());
    answer(u"Save"_s);
    trigger("file.close");
    EXPECT_EQ(window().workspace()->current(), nullptr);
    QFile file(path(u"a.graph"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("comment='x'"));
}

TEST_F(Shell, RemembersFilesForTheNextSession)
{
    open();
    window().workspace()->open(write(u"b.graph"_s, kGraph));
    window().workspace()->open(path(u"a.graph"_s)); // shows the tab that has it
    EXPECT_EQ(window().workspace()->tabs().size(), 2);
    EXPECT_TRUE(window().close());
    shown.reset();
    EXPECT_EQ(settings.openFiles().size(), 2);
    window().workspace()->reopenFiles();
    EXPECT_EQ(window().workspace()->tabs().size(), 2);
    EXPECT_EQ(settings.recentFiles().value(0), path(u"b.graph"_s));
}

TEST_F(Shell, SaysWhyAFileCannotBeOpened)
{
    answer(u"OK"_s);
    EXPECT_FALSE(window().workspace()->open(write(u"bad.graph"_s, "<graph>")));
    EXPECT_EQ(window().workspace()->current(), nullptr);
}

TEST_F(Shell, OffersToReadAChangedFileAgain)
{
    open();
    write(u"a.graph"_s, QByteArray(kGraph).replace("2026", "2031"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return child<QFrame>("messageBar").isVisible(); }));
    child<QFrame>("messageBar").findChild<QPushButton *>()->click();
    EXPECT_EQ(document().variables().value(u"year"_s), u"2031"_s);
}

TEST_F(Shell, AFileThatWasChangedOrRemovedIsNotReplacedInSilence)
{
    const auto saved = [this] {
        QFile file(path(u"a.graph"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    open();
    document().setComment(u"table"_s, u"mine"_s);
    const QByteArray theirs = QByteArray(kGraph).replace("2026", "2031");
    write(u"a.graph"_s, theirs);
    answer(u"Cancel"_s);
    trigger("file.save");
    EXPECT_EQ(saved(), theirs);
    EXPECT_TRUE(document().isModified());
    answer(u"Save"_s);
    trigger("file.save");
    EXPECT_TRUE(saved().contains("mine"));
    // Kept, it is a change that a save may write.
    write(u"a.graph"_s, theirs);
    auto &bar = child<QFrame>("messageBar");
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar.isVisible(); }));
    EXPECT_FALSE(document().isModified());
    bar.findChildren<QPushButton *>().last()->click();
    EXPECT_TRUE(document().isModified());
    trigger("file.save");
    EXPECT_TRUE(saved().contains("mine"));
    QFile::remove(path(u"a.graph"_s));
    EXPECT_TRUE(QTest::qWaitFor([&] { return document().isModified(); }));
    EXPECT_TRUE(bar.findChild<QLabel *>()->text().contains(u"was removed"_s));
    trigger("file.save");
    EXPECT_TRUE(saved().contains("mine"));
}

TEST_F(Shell, AsksBeforeARunIsStopped)
{
    ASSERT_EQ(mkfifo(path(u"orders.csv"_s).toUtf8().constData(), 0600), 0); // the run waits for it
    open();
    const RunController &runs = *window().workspace()->current()->runs();
    QTest::qWait(20);
    const int height = canvas().height();
    trigger("run.all");
    QTest::qWait(20);
    EXPECT_EQ(canvas().height(), height); // the progress has its place
    answer(u"No"_s);
    trigger("file.close");
    answer(u"No"_s);
    EXPECT_FALSE(window().close());
    ASSERT_EQ(window().workspace()->tabs().size(), 1);
    EXPECT_TRUE(runs.isRunning());
    answer(u"Yes"_s);
    trigger("file.close");
    EXPECT_TRUE(window().workspace()->tabs().isEmpty());
}

TEST_F(Shell, ARunThatFailsShowsItsLog)
{
    open(); // without its input
    canvas().setFocus();
    EXPECT_TRUE(child<QWidget>("logs").visibleRegion().isEmpty());
    trigger("run.all");
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !child<QWidget>("logs").visibleRegion().isEmpty(); }, 20000));
    EXPECT_TRUE(canvas().hasFocus());
}

TEST_F(Shell, LongNamesKeepTheSizesOfTheWindow)
{
    const QByteArray name = QByteArray("long_name_").repeated(30);
    window().workspace()->open(
        write(u"b.graph"_s, QByteArray(kGraph).replace("table", name).replace("orders", name)));
    // The lists of pins and actions show the beginning of a name.
    const int most =
        window().minimumSizeHint().width() + 40 * window().fontMetrics().averageCharWidth();
    canvas().select({QString::fromLatin1(name)});
    trigger("run.data");
    trigger("run.all");
    auto &log = child<QComboBox>("logAction");
    EXPECT_TRUE(QTest::qWaitFor([&] { return log.count() > 1; }, 20000));
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !child<QLabel>("dataNote").text().isEmpty(); }, 20000));
    window().workspace()->current()->messages()->show(QString::fromLatin1(name), {});
    auto &problems = child<QTreeWidget>("problems");
    EXPECT_TRUE(QTest::qWaitFor([&] { return problems.topLevelItemCount() > 0; }));
    for (const char *const dock : {"dock.problems", "dock.data", "dock.logs"}) {
        child<QDockWidget>(dock).raise();
        QTest::qWait(20);
        EXPECT_LE(window().minimumSizeHint().width(), most) << dock;
    }
    EXPECT_LT(problems.columnWidth(0), 400);
    EXPECT_LT(child<QTreeWidget>("outline").columnWidth(0), 400);
}

TEST_F(Shell, StartPageListsTheExamples)
{
    const auto examples = findExamples(examplesFolder());
    ASSERT_GE(examples.size(), 6);
    EXPECT_EQ(examples.first().title, u"main"_s);
    for (const Example &example : examples) {
        EXPECT_FALSE(example.meaning.isEmpty()) << example.fileName.toStdString();
    }
    auto &list = child<QListWidget>("startExamples");
    ASSERT_EQ(list.count(), examples.size());
    list.setCurrentRow(0);
    QTest::keyClick(&list, Qt::Key_Return);
    ASSERT_NE(window().workspace()->current(), nullptr);
    EXPECT_EQ(document().ids(), (QStringList{u"table"_s, u"workbook"_s}));
}

TEST_F(Shell, FilesDroppedOnTheStartPageAreOpened)
{
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(write(u"a.csv"_s, "a\n1\n")),
                   QUrl::fromLocalFile(write(u"b.json"_s, "[{\"b\": 1}]"))});
    const auto drop = [&] {
        QDragEnterEvent enter({400, 300}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        enter.setAccepted(false);
        QApplication::sendEvent(&window(), &enter);
        if (enter.isAccepted()) {
            QDropEvent event({400, 300}, Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&window(), &event);
        }
        return enter.isAccepted();
    };
    EXPECT_TRUE(drop());
    ASSERT_EQ(window().workspace()->tabs().size(), 1);
    EXPECT_EQ(document().ids(), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_FALSE(drop()); // outside the canvas
    files.setUrls({QUrl::fromLocalFile(write(u"a.graph"_s, kGraph))});
    EXPECT_TRUE(drop());
    EXPECT_EQ(window().workspace()->tabs().size(), 2);
}

TEST_F(Shell, EveryControlHasAnAccessibleName)
{
    open();
    for (const QStringList &ids :
         {QStringList{u"table"_s}, QStringList{u"book"_s}, document().ids(), QStringList()}) {
        canvas().select(ids);
        for (const QWidget *const widget : window().findChildren<QWidget *>()) {
            const QWidget *const parent = widget->parentWidget();
            const bool isPart = qobject_cast<const QComboBox *>(parent) != nullptr ||
                                qobject_cast<const QHeaderView *>(widget) != nullptr ||
                                widget->objectName().startsWith("qt_"_L1);
            const bool isControl = qobject_cast<const QLineEdit *>(widget) != nullptr ||
                                   qobject_cast<const QAbstractItemView *>(widget) != nullptr ||
                                   qobject_cast<const QPlainTextEdit *>(widget) != nullptr;
            if (isControl && !isPart && widget->isVisible()) {
                EXPECT_FALSE(QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget))
                                 ->text(QAccessible::Name)
                                 .isEmpty())
                    << widget->metaObject()->className() << ' '
                    << widget->objectName().toStdString();
            }
        }
    }
}

TEST_F(Shell, HelpDescribesTheSelectedAction)
{
    open();
    canvas().select({u"table"_s});
    trigger("help.action");
    auto &help = child<QTextEdit>("help");
    const QString page = help.toPlainText();
    EXPECT_TRUE(page.contains(u"readCSV"_s));
    EXPECT_TRUE(page.contains(u"sortedOn"_s));
    // The build has the reference where an installation has it, if it makes HTML.
    if (QFile::exists(QApplication::applicationDirPath() +
                      u"/../share/doc/corvanta/html/index.html"_s)) {
        const QTextCursor link = help.document()->find(u"Examples and messages"_s);
        const QUrl target(link.charFormat().anchorHref());
        EXPECT_TRUE(QFile::exists(target.toLocalFile())) << target.toString().toStdString();
        EXPECT_TRUE(target.path().endsWith(u"/actions/readCSV.html"_s));
    }
    document().action(u"table"_s)->showHelp(); // an action without a page of its own
}

/// install_test.py builds the example module against the installed tree and puts it on the search
/// path.
TEST_F(Shell, ShowsTheActionsOfOtherModules)
{
    if (registry().prototype(u"readPairs"_s) == nullptr) {
        GTEST_SKIP() << "the example module is not on the search path";
    }
    trigger("file.new");
    trigger("graph.add");
    auto &search = child<QLineEdit>("paletteSearch");
    QTest::keyClicks(&search, u"readpairs"_s);
    QTest::keyClick(&search, Qt::Key_Return);
    ASSERT_EQ(document().ids().size(), 1);
    canvas().select(document().ids());
    const auto lines = window().findChildren<QLineEdit *>();
    const auto file = std::ranges::find(lines, u"File with a pair on each line."_s,
                                        [](const QLineEdit *line) { return line->toolTip(); });
    ASSERT_NE(file, lines.end());
    QTest::keyClicks(*file, u"a.pairs"_s);
    EXPECT_TRUE(document().toXml().contains("fileName='a.pairs'")) << document().toXml().data();
    trigger("edit.undo");
    EXPECT_EQ((*file)->text(), QString());
    trigger("help.action");
    EXPECT_TRUE(child<QTextEdit>("help").toPlainText().contains(u"Text between the name"_s));
}

TEST_F(Shell, SettingsKeepWhatIsValid)
{
    settings.setFontPercent(1000);
    EXPECT_EQ(settings.fontPercent(), Settings::kMaxFontPercent);
    settings.setTheme(Theme::Dark);
    EXPECT_EQ(Settings(folder.filePath(u"studio.ini"_s)).theme(), Theme::Dark);
    EXPECT_TRUE(isDark(themePalette(Theme::Dark)));
    EXPECT_FALSE(isDark(themePalette(Theme::Light)));
    for (int i = 0; i < 20; ++i) {
        settings.addRecentFile(u"/tmp/%1.graph"_s.arg(i));
    }
    EXPECT_EQ(settings.recentFiles().size(), Settings::kMaxRecent);
    EXPECT_EQ(settings.recentFiles().first(), u"/tmp/19.graph"_s);
}

} // namespace
