// The commands of the window, their shortcuts, and the program itself.
#include "corvanta/edit/translation.h"
#include "studio/shell/command_text.h"
#include "studio/shell/preferences/shortcut_editor.h"
#include "studio/shell/views/message_bar.h"
#include "tests/studio/shell_window.h"

#include <QAction>
#include <QClipboard>
#include <QDockWidget>
#include <QFileInfo>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QScrollArea>
#include <QSet>
#include <QStatusBar>
#include <QTableView>
#include <QTranslator>
#include <QTreeView>
#include <QTreeWidget>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;
using namespace corvanta::studio::test;

namespace {

TEST_F(Shell, ShortcutsAreUniqueEditableAndKept)
{
    open(); // the canvas has keys too
    Commands &commands = window().commands();
    for (const QAction *const action : commands.all()) {
        EXPECT_FALSE(action->objectName().isEmpty());
        EXPECT_FALSE(action->text().isEmpty());
        EXPECT_FALSE(action->statusTip().isEmpty()) << action->objectName().toStdString();
        EXPECT_EQ(commands.findConflict(action, action->shortcut()), nullptr)
            << action->objectName().toStdString();
    }
    // A key of the whole window means the same everywhere, except for those of the clipboard.
    for (const QAction *const part : commands.ofParts()) {
        for (const QAction *const command : commands.all()) {
            EXPECT_TRUE(part->shortcut().isEmpty() ||
                        command->shortcutContext() == Qt::WidgetWithChildrenShortcut ||
                        !command->shortcuts().contains(part->shortcut()))
                << part->objectName().toStdString() << ' ' << command->objectName().toStdString();
        }
    }
    QAction *const run = commands[u"run.all"_s];
    ShortcutEditor editor(commands);
    auto *const tree = editor.findChild<QTreeWidget *>();
    tree->setCurrentItem(tree->findItems(u"Run"_s, Qt::MatchExactly).value(0));
    auto *const keys = editor.findChild<QKeySequenceEdit *>();
    const auto enter = [&](const QKeySequence &sequence) {
        keys->setKeySequence(sequence);
        Q_EMIT keys->editingFinished();
    };
    enter(QKeySequence(u"Ctrl+S"_s)); // of another command
    EXPECT_EQ(run->shortcut(), QKeySequence(u"F5"_s));
    EXPECT_FALSE(editor.findChild<QLabel *>(u"shortcutConflict"_s)->text().isEmpty());
    enter(QKeySequence(u"Ctrl+R"_s));
    EXPECT_EQ(run->shortcut(), QKeySequence(u"Ctrl+R"_s));
    // Those of a part of the window; a command of the window may have the same one.
    tree->setCurrentItem(tree->findItems(u"Data: Find"_s, Qt::MatchExactly).value(0));
    enter(QKeySequence(u"Ctrl+N"_s));
    const auto find = [&] { return child<QAction>("dataFind").shortcut(); };
    EXPECT_EQ(find(), QKeySequence(u"Ctrl+N"_s));
    tree->setCurrentItem(tree->findItems(u"Data: Reload"_s, Qt::MatchExactly).value(0));
    enter(QKeySequence(u"Ctrl+N"_s));
    EXPECT_NE(child<QAction>("dataReload").shortcut(), QKeySequence(u"Ctrl+N"_s));
    // The canvas has keys of its own and those of some commands.
    tree->setCurrentItem(tree->findItems(u"Canvas: Next Link"_s, Qt::MatchExactly).value(0));
    const auto nextLink = [&] { return child<QAction>("canvasNextLink").shortcut(); };
    for (const auto &taken : {u"L"_s, u"Backspace"_s, u"Ctrl+C"_s}) {
        enter(QKeySequence(taken));
        EXPECT_EQ(nextLink(), QKeySequence(u"K"_s)) << taken.toStdString();
    }
    enter(QKeySequence(u"J"_s));
    EXPECT_EQ(nextLink(), QKeySequence(u"J"_s));
    tree->setCurrentItem(tree->findItems(u"Copy"_s, Qt::MatchExactly).value(0));
    enter(QKeySequence(u"J"_s));
    EXPECT_EQ(commands[u"edit.copy"_s]->shortcut(), QKeySequence(u"Ctrl+C"_s));
    tree->setCurrentItem(tree->findItems(u"Canvas: Next Action"_s, Qt::MatchExactly).value(0));
    EXPECT_FALSE(keys->isEnabled()); // Tab stays
    shown.reset();
    open();
    EXPECT_EQ(nextLink(), QKeySequence(u"J"_s));
    EXPECT_EQ(window().commands()[u"run.all"_s]->shortcut(), QKeySequence(u"Ctrl+R"_s));
    EXPECT_EQ(child<QAction>("dataFind").shortcut(), QKeySequence(u"Ctrl+N"_s));
    window().commands().setShortcut(window().commands()[u"run.all"_s], QKeySequence(u"F5"_s));
    EXPECT_FALSE(settings.shortcut(u"run.all"_s));
}

/// The texts of the program are French as long as it exists.
struct French
{
    French() { EXPECT_TRUE(loadTranslation(QLocale(QLocale::French))); }
    ~French() { qDeleteAll(qApp->findChildren<QTranslator *>()); } // which removes them
    Q_DISABLE_COPY_MOVE(French)
};

/// The letters that choose an entry of each menu; each may be there once.
void expectUniqueMnemonics(const QMenuBar &bar)
{
    QList<const QWidget *> menus{&bar};
    for (const QMenu *const menu : bar.findChildren<QMenu *>()) {
        menus << menu;
    }
    for (const QWidget *const menu : std::as_const(menus)) {
        QSet<QKeySequence> letters;
        for (const QAction *const action : menu->actions()) {
            const QKeySequence letter = QKeySequence::mnemonic(action->text());
            EXPECT_TRUE(letter.isEmpty() || !letters.contains(letter))
                << action->text().toStdString();
            letters << letter;
        }
    }
}

/// The letters of the menus lead nowhere else.
void expectOwnLetters(const MainWindow &window)
{
    QSet<QKeySequence> letters;
    for (const QAction *const menu : window.menuBar()->actions()) {
        letters << QKeySequence::mnemonic(menu->text());
    }
    QStringList texts;
    for (const QLabel *const label : window.findChildren<QLabel *>()) {
        texts << (label->buddy() != nullptr ? label->text() : QString());
    }
    for (const QAbstractButton *const button : window.findChildren<QAbstractButton *>()) {
        texts << button->text();
    }
    for (const QString &text : std::as_const(texts)) {
        EXPECT_FALSE(letters.contains(QKeySequence::mnemonic(text))) << text.toStdString();
    }
}

TEST_F(Shell, LettersOfMenusOpenTheirMenus)
{
    expectOwnLetters(window()); // the start page
    trigger("file.new");
    for (const auto &action : registry().prototypes()) {
        canvas().select(
            {document().addAction(QString::fromLatin1(action->getTypeName()), QPointF())});
        expectOwnLetters(window());
    }
}

TEST_F(Shell, AFrenchWindowIsFrenchEverywhere)
{
    QMap<QString, QString> english;
    for (const QAction *const command : window().commands().all()) {
        english[command->objectName()] = command->statusTip();
    }
    expectUniqueMnemonics(*window().menuBar());
    shown.reset();
    const French french;
    expectOwnLetters(window()); // the start page
    write(u"orders.csv"_s, "a\n1\n");
    open();
    for (const QAction *const command : window().commands().all()) {
        EXPECT_NE(command->statusTip(), english[command->objectName()])
            << command->objectName().toStdString();
    }
    expectUniqueMnemonics(*window().menuBar());
    EXPECT_EQ(child<QDockWidget>("dock.properties").windowTitle(), u"Propriétés"_s);
    EXPECT_EQ(child<QTreeView>("paletteTree").model()->index(0, 0).data(), u"Lire des fichiers"_s);
    canvas().select({u"table"_s});
    expectOwnLetters(window());
    trigger("run.data");
    const auto *const rows = child<QTableView>("dataRows").model();
    EXPECT_TRUE(QTest::qWaitFor([&] { return rows->rowCount() == 1; }, 20000));
    EXPECT_EQ(rows->headerData(0, Qt::Horizontal).toString(), u"a\ntexte"_s);
    EXPECT_EQ(child<QLabel>("dataNote").text(), u"Toutes les lignes\u00a0: 1"_s);
    trigger("run.all");
    const auto &status = child<QLabel>("runStatusText");
    EXPECT_TRUE(QTest::qWaitFor([&] { return status.text().startsWith(u"Terminé"_s); }, 20000))
        << status.text().toStdString();
    document().addAction(u"union"_s, {});
    auto &problems = child<QTreeWidget>("problems");
    EXPECT_TRUE(QTest::qWaitFor([&] { return problems.topLevelItemCount() > 0; }, 20000));
    EXPECT_EQ(problems.topLevelItem(0)->text(1), u"aucun lien ne mène à ses entrées"_s);
    document().setComment(u"table"_s, u"x"_s);
    EXPECT_EQ(document().undoStack()->undoText().section(u' ', 0, 0), u"Commenter"_s);
    answer(u"Annuler"_s); // Qt's own button
    trigger("file.close");
    EXPECT_NE(window().workspace()->current(), nullptr);
}

TEST_F(Shell, TheFieldsOfSeveralActionsFitInTheDock)
{
    trigger("file.new");
    for (const QString &type : {u"ReadXBF"_s, u"writeExcel"_s}) {
        canvas().select({document().addAction(type, {}), document().addAction(type, {0, 200})});
        auto *const scroll = child<QWidget>("properties").findChild<QScrollArea *>();
        ASSERT_NE(scroll, nullptr);
        EXPECT_LE(scroll->widget()->minimumSizeHint().width(), 340) << type.toStdString();
        QTest::qWait(20); // the layout follows
        for (const QLabel *const label : scroll->findChildren<QLabel *>()) {
            EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                << label->text().toStdString();
        }
    }
}

TEST_F(Shell, ARunUpdatesTheMarksOfFiles)
{
    write(u"orders.csv"_s, "a\n1\n");
    open();
    canvas().select({u"book"_s});
    const auto isMarked = [this](const QString &meaning) {
        const auto marks = child<QWidget>("properties").findChildren<QAction *>();
        return QTest::qWaitFor(
            [&] {
                return std::any_of(marks.begin(), marks.end(), [&](const QAction *mark) {
                    return mark->isVisible() && mark->toolTip() == meaning;
                });
            },
            20000);
    };
    EXPECT_TRUE(isMarked(u"The file does not exist yet"_s));
    trigger("run.all");
    EXPECT_TRUE(isMarked(u"The file exists"_s));
}

TEST_F(Shell, CommandsChangeTheGraph)
{
    GraphDocument &graph = open();
    const QStringList ids = graph.ids();
    const LinkRef first = graph.links().first();
    canvas().select({u"sort"_s});
    trigger("edit.duplicate");
    const QString copy = canvas().selectedIds().value(0);
    EXPECT_EQ(graph.ids().size(), 4);
    canvas().graphScene().link(first)->setSelected(true); // with the copy
    trigger("graph.insert");
    EXPECT_TRUE(graph.links().contains(LinkRef{{u"table"_s, 0}, {copy, 0}}));
    trigger("edit.cut");
    EXPECT_EQ(graph.ids(), ids);
    canvas().select({u"table"_s, u"sort"_s});
    trigger("graph.link"); // the cut one took both links with it
    EXPECT_TRUE(graph.links().contains(first));
    graph.move({{u"sort"_s, {256, 200}}});
    trigger("align.top");
    EXPECT_EQ(graph.position(u"sort"_s).y(), graph.position(u"table"_s).y());
    trigger("edit.paste");
    trigger("edit.selectAll");
    EXPECT_EQ(canvas().selectedIds().size(), 4);
    trigger("edit.delete");
    EXPECT_TRUE(graph.ids().isEmpty());
    trigger("edit.undo");
    trigger("file.saveAll");
    EXPECT_FALSE(graph.isModified());
    trigger("edit.undo"); // back to the first graph
    graph.undoStack()->setIndex(0);
    answer(u"Yes"_s);
    trigger("file.reload");
    EXPECT_EQ(graph.ids().size(), 4);
    const double zoom = canvas().zoom();
    trigger("view.zoomIn");
    EXPECT_GT(canvas().zoom(), zoom);
    trigger("view.dark");
    EXPECT_EQ(settings.theme(), Theme::Dark);
    trigger("view.dark");
}

TEST_F(Shell, DeletedActionsLeaveTheirNeighboursLinked)
{
    GraphDocument &graph = open();
    graph.addLink({u"sort"_s, 0}, {graph.addAction(u"writeJSON"_s, {}), 0});
    const QByteArray before = graph.toXml();
    canvas().select({u"sort"_s});
    trigger("edit.deleteJoin");
    EXPECT_EQ(graph.ids().size(), 3);
    EXPECT_EQ(graph.links(), (QVector<LinkRef>{{{u"table"_s, 0}, {u"book"_s, 0}},
                                               {{u"table"_s, 0}, {u"writeJSON"_s, 0}}}));
    trigger("edit.undo");
    EXPECT_EQ(graph.toXml(), before);
    // Without rows before them, those after them have none.
    canvas().select({u"table"_s, u"sort"_s});
    trigger("edit.deleteJoin");
    EXPECT_EQ(graph.ids().size(), 2);
    EXPECT_TRUE(graph.links().isEmpty());
}

TEST_F(Shell, CommandAndScriptRunTheGraph)
{
    EXPECT_EQ(shellWord(u"a/b.graph"_s), u"a/b.graph"_s);
    EXPECT_EQ(shellWord(u"it's $x"_s), u"'it'\\''s $x'"_s);
    write(u"orders.csv"_s, "a\n1\n");
    const QString name = write(u"it's 100%1 $HOME.graph"_s, kGraph);
    window().workspace()->open(name);
    document().setComment(u"table"_s, u"x"_s);
    trigger("export.command");
    EXPECT_EQ(QApplication::clipboard()->text(), runCommandText(name));
    EXPECT_FALSE(document().isModified());
    EXPECT_TRUE(window().statusBar()->currentMessage().contains(u"was saved"_s));
    const QString script = path(u"run.sh"_s);
    chooseFile(path(u"none/run.sh"_s));
    trigger("export.script");
    const auto *const message = window().workspace()->current()->messages()->findChild<QLabel *>();
    EXPECT_TRUE(message->text().contains(u"none/run.sh” cannot be written: "_s))
        << message->text().toStdString();
    chooseFile(script);
    trigger("export.script");
    EXPECT_TRUE(QFileInfo(script).isExecutable());
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_s, QCoreApplication::applicationDirPath() + u':' +
                                      environment.value(u"PATH"_s));
    process.setProcessEnvironment(environment);
    process.start(u"/bin/sh"_s, {script, u"--quiet"_s});
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    EXPECT_TRUE(QFile::exists(path(u"out.csv"_s)));
}

/// Neither with a display that does not answer nor with a plug-in of Qt that does not exist.
TEST(Program, SaysThatThereIsNoDisplay)
{
    for (const auto &platform : {u"xcb"_s, u"missing"_s}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        environment.insert(u"DISPLAY"_s, u":4711"_s);
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationDirPath() + u"/corvanta-studio"_s);
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 2);
        EXPECT_TRUE(process.readAllStandardError().contains(
            "corvanta-studio: no display; start it in a desktop session, or with 'ssh -X'\n"));
    }
}

} // namespace
