// A session as a user has it: the graph of the README is built by keys and the mouse alone, saved
// and run, and its workbook is that of the command.
#include "corvanta/action_registry.h"
#include "studio/canvas/canvas_view.h"
#include "studio/run/log_panel.h"
#include "studio/run/run_controller.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/main_window.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/workspace.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QScrollArea>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;

namespace {

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

void write(const QString &name, const QByteArray &text)
{
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
}

/// The first block of the README between lines that begin with ``` and follow `title`.
QByteArray blockOf(const QString &readme, const QString &title)
{
    const qsizetype start = readme.indexOf(u'\n', readme.indexOf(u"```"_s, readme.indexOf(title)));
    return readme.mid(start + 1, readme.indexOf(u"```"_s, start) - start - 1).toUtf8();
}

/// Runs the command and returns what it prints.
QByteArray command(const QStringList &words)
{
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + u"/corvanta"_s, words);
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

/// A window and the hands of its user.
class User
{
public:
    User()
    {
        m_registry.loadAll();
        m_window = std::make_unique<MainWindow>(m_registry, m_settings);
        m_window->resize(1500, 950);
        m_window->show();
        m_window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    }

    QString folder() const { return m_folder.path(); }
    const DocumentTab &tab() const { return *m_window->workspace()->current(); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(focus(), key, modifiers);
    }
    void type(const QString &text)
    {
        for (const QChar letter : text) {
            QTest::keyClick(focus(), letter.toLatin1()); // the first one may open an editor
        }
    }
    /// Add an action by the search of the palette, and give it another name.
    void addAction(const QString &search, const QString &name)
    {
        press(Qt::Key_Space, Qt::ControlModifier);
        type(search);
        press(Qt::Key_Return);
        press(Qt::Key_3, Qt::ControlModifier);
        type(name);
        press(Qt::Key_Return);
    }
    /// Enter a text into the field of a parameter of the selected action.
    void enter(const char *parameter, const QString &text)
    {
        auto *const edit = field<QLineEdit>(parameter);
        QTest::mouseClick(edit, Qt::LeftButton);
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }
    void check(const char *parameter)
    {
        auto *const box = field<QCheckBox>(parameter);
        QTest::keyClick(box, Qt::Key_Space);
        EXPECT_TRUE(box->isChecked()) << parameter;
    }
    /// Save as `name`, in the file dialog that opens.
    void saveAs(const QString &name)
    {
        QTimer::singleShot(100, m_window.get(), [name] {
            auto *const dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            auto *const edit = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s);
            edit->selectAll();
            QTest::keyClicks(edit, name);
            QTest::keyClick(edit, Qt::Key_Return);
        });
        press(Qt::Key_S, Qt::ControlModifier);
        m_window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    }

private:
    QWidget *focus() const
    {
        QWidget *const widget = QApplication::focusWidget();
        return widget != nullptr ? widget : m_window.get();
    }
    /// The control of a parameter; its group is unfolded first.
    template <class Widget> Widget *field(const char *parameter)
    {
        for (QToolButton *const heading : m_window->findChildren<QToolButton *>(u"heading"_s)) {
            if (heading->property("isFolded").toBool()) {
                QTest::mouseClick(heading, Qt::LeftButton);
            }
        }
        auto *const editor = m_window->findChild<QWidget *>(QLatin1StringView(parameter));
        auto *const control = qobject_cast<Widget *>(editor) != nullptr
                                  ? qobject_cast<Widget *>(editor)
                                  : editor->findChild<Widget *>();
        for (QWidget *each = control; each != nullptr; each = each->parentWidget()) {
            if (auto *const area = qobject_cast<QScrollArea *>(each)) {
                area->ensureWidgetVisible(control);
            }
        }
        QTest::qWait(1); // the layout of the groups
        return control;
    }

    QTemporaryDir m_folder;
    Settings m_settings{m_folder.filePath(u"studio.ini"_s)};
    ActionRegistry m_registry;
    std::unique_ptr<MainWindow> m_window;
};

/// The elements of both graphs by id, without positions and names of variables.
QMap<QString, QByteArray> actionsOf(const QString &file)
{
    const auto graph = CorvantaGraph::load(file);
    EXPECT_TRUE(graph);
    QMap<QString, QByteArray> actions;
    for (const CorvantaGraph::Action &action : graph->actions) {
        QStringList attributes;
        for (const char *const name : {"fileName", "fileNameDestination", "types", "dateFormat",
                                       "dateWidths", "urlTag", "namedRange"}) {
            attributes << QString::fromUtf16(action.parameters.getAttribute(name));
        }
        actions[action.id] = attributes.join(u'|').toUtf8();
    }
    return actions;
}

TEST(Session, BuildsAndRunsTheGraphOfTheReadme)
{
    const QString readme =
        QString::fromUtf8(contentOf(QStringLiteral(CORVANTA_SOURCE_DIR "/README.md")));
    User user;
    const QString folder = user.folder();
    const QString own = folder + u"/mine"_s;
    QDir(folder).mkpath(u"mine"_s);
    for (const QString &each : {folder, own}) {
        write(each + u"/orders.csv"_s, blockOf(readme, u"It reads this `orders.csv`"_s));
    }
    write(folder + u"/orders.graph"_s, blockOf(readme, u"This one, `orders.graph`"_s));
    command({u"run"_s, folder + u"/orders.graph"_s, u"--set"_s, u"year=2026"_s, u"--quiet"_s});

    user.press(Qt::Key_N, Qt::ControlModifier);
    user.saveAs(own + u"/orders.graph"_s);
    ASSERT_EQ(user.tab().document()->fileName(), own + u"/orders.graph"_s);
    user.addAction(u"readcsv"_s, u"table"_s);
    user.enter("fileName", u"orders.csv"_s);
    user.enter("types", u"K,F,U,U"_s);
    user.addAction(u"writeexcel"_s, u"book"_s); // after the selected action
    user.enter("fileNameDestination", u"${outDir}/orders_${year}.xlsx"_s);
    user.check("dateWidths");
    user.check("urlTag");
    user.enter("namedRange", u"orders"_s);
    user.enter("ToDate", u"day"_s);
    user.enter("dateFormat", u"yyyy-MM-dd"_s);
    user.press(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    user.type(u"year"_s);
    user.press(Qt::Key_Tab);
    user.type(u"2026"_s); // saving ends the edit
    user.press(Qt::Key_S, Qt::ControlModifier);
    ASSERT_FALSE(user.tab().document()->isModified());
    EXPECT_EQ(actionsOf(own + u"/orders.graph"_s), actionsOf(folder + u"/orders.graph"_s))
        << contentOf(own + u"/orders.graph"_s).toStdString();

    RunController &runs = *user.tab().runs();
    user.press(Qt::Key_F5);
    EXPECT_TRUE(runs.isRunning());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !runs.isRunning(); }, 20000));
    EXPECT_EQ(user.tab().document()->runState(u"book"_s).state, NodeState::Done)
        << user.tab().log()->shownText().toStdString();
    const QString book = u"/orders_2026.xlsx"_s;
    EXPECT_EQ(command({u"convert"_s, own + book, u"-"_s, u"--to"_s, u"csv"_s}),
              command({u"convert"_s, folder + book, u"-"_s, u"--to"_s, u"csv"_s}));
    EXPECT_TRUE(contentOf(own + book) == contentOf(folder + book));
}

} // namespace
