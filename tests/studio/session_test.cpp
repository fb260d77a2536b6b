// A session as a user has it: the graph of the README is built by keys and the mouse alone, saved
// and run, and its workbook is that of the command. On an X server the keys and the mouse are those
// of the server, and an editor that was killed offers what was not saved.
#include "corvanta/action_registry.h"
#include "studio/canvas/canvas_view.h"
#include "studio/run/log_panel.h"
#include "studio/run/run_controller.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/main_window.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/workspace.h"
#include "tests/studio/x_input.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDirIterator>
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
#include <QWindow>

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

/// The hands of a user: keys and a mouse, of the X server if there is one, else of Qt's tests.
class Hands : public QObject
{
public:
    Hands() { qApp->installEventFilter(this); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        if (m_x == nullptr) {
            QTest::keyClick(focus(), key, modifiers);
        } else {
            m_x->key(key, modifiers);
            settle();
        }
    }
    void type(const QString &text)
    {
        for (const QChar letter : text) {
            if (m_x == nullptr) {
                QTest::keyClick(focus(), letter.toLatin1()); // the first one may open an editor
            } else {
                m_x->letter(letter);
                settle();
            }
        }
    }
    void drag(QWidget *widget, QPoint from, QPoint to)
    {
        if (m_x == nullptr) {
            QTest::mousePress(widget, Qt::LeftButton, {}, from);
            QTest::mouseMove(widget, to);
            QTest::mouseRelease(widget, Qt::LeftButton, {}, to);
            return;
        }
        m_x->moveTo(widget->mapToGlobal(from));
        m_x->button(true);
        for (const int part : {1, 2, 3}) {
            m_x->moveTo(widget->mapToGlobal(from + (to - from) * part / 3));
        }
        m_x->button(false);
        settle();
    }
    void click(QWidget *widget, QPoint place) { drag(widget, place, place); }

private:
    static QWidget *focus()
    {
        QWidget *const widget = QApplication::focusWidget();
        return widget != nullptr ? widget : QApplication::activeWindow();
    }
    /// What a window has got from the server. Each of our gestures ends with a release; a key that
    /// changes the focus may lose its own.
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        m_isReleased |= watched->isWindowType() && (event->type() == QEvent::KeyRelease ||
                                                    event->type() == QEvent::MouseButtonRelease);
        return false;
    }
    void settle()
    {
        constexpr int kMaxMs = 300;
        m_isReleased = false;
        std::ignore = QTest::qWaitFor([this] { return m_isReleased; }, kMaxMs);
    }

    std::unique_ptr<test::XInput> m_x = test::XInput::connect();
    bool m_isReleased = false;
};

/// A window and its user.
class User : public Hands
{
public:
    User()
    {
        m_registry.loadAll();
        m_window = std::make_unique<MainWindow>(m_registry, m_settings);
        m_window->resize(1500, 950);
        m_window->show();
        activate();
    }

    QString folder() const { return m_folder.path(); }
    const DocumentTab &tab() const { return *m_window->workspace()->current(); }
    /// Add an action by the search of the palette, and give it another name.
    void addAction(const QString &search, const QString &name)
    {
        press(Qt::Key_Space, Qt::ControlModifier);
        type(search);
        press(Qt::Key_Return);
        rename(name);
    }
    /// Enter a text into the field of a parameter of the selected action.
    void enter(const char *parameter, const QString &text)
    {
        auto *const edit = field<QLineEdit>(parameter);
        click(edit, edit->rect().center());
        press(Qt::Key_A, Qt::ControlModifier);
        type(text);
        press(Qt::Key_Return);
    }
    void check(const char *parameter)
    {
        auto *const box = field<QCheckBox>(parameter);
        click(box, {box->height() / 2, box->height() / 2});
        EXPECT_TRUE(box->isChecked()) << parameter;
    }
    /// Drag the output of an action into the open, and choose the action that gets its rows.
    void dragToNew(const QString &id, const QString &search, const QString &name)
    {
        CanvasView &canvas = *tab().canvas();
        const QPoint pin = canvas.mapFromScene(canvas.graphScene().node(id)->outputPosition(0));
        drag(canvas.viewport(), pin, pin + QPoint(80, 60));
        type(search);
        press(Qt::Key_Return);
        activate(); // without an X server a popup takes the focus with it
        rename(name);
    }
    /// Save as `name`, in the file dialog that opens.
    void saveAs(const QString &name)
    {
        auto *const timer = new QTimer(m_window.get());
        QObject::connect(timer, &QTimer::timeout, m_window.get(), [this, name, timer] {
            auto *const dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible()) {
                return; // a busy machine opens it later
            }
            if (!dialog->isAncestorOf(QApplication::focusWidget())) {
                dialog->activateWindow(); // as a window manager does
                return;
            }
            timer->stop();
            press(Qt::Key_A, Qt::ControlModifier);
            type(name);
            // The first one may end the list of names that completes the text.
            for (int i = 0; i < 2 && dialog->isVisible(); ++i) {
                press(Qt::Key_Return);
            }
            if (dialog->isVisible()) {
                dialog->reject(); // the test must not wait for it
            }
        });
        timer->start(50);
        press(Qt::Key_S, Qt::ControlModifier);
        activate();
    }

private:
    void activate()
    {
        m_window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    }
    void rename(const QString &name)
    {
        press(Qt::Key_3, Qt::ControlModifier);
        type(name);
        press(Qt::Key_Return);
    }
    /// The control of a parameter; its group is unfolded first.
    template <class Widget> Widget *field(const char *parameter)
    {
        for (QToolButton *const heading : m_window->findChildren<QToolButton *>(u"heading"_s)) {
            if (heading->property("isFolded").toBool()) {
                heading->click();
            }
        }
        constexpr int kLayoutMs = 50;
        QTest::qWait(kLayoutMs);
        auto *const editor = m_window->findChild<QWidget *>(QLatin1StringView(parameter));
        auto *const control = qobject_cast<Widget *>(editor) != nullptr
                                  ? qobject_cast<Widget *>(editor)
                                  : editor->findChild<Widget *>();
        for (QWidget *each = control; each != nullptr; each = each->parentWidget()) {
            if (auto *const area = qobject_cast<QScrollArea *>(each)) {
                area->ensureWidgetVisible(control);
            }
        }
        QTest::qWait(kLayoutMs);
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
    user.dragToNew(u"table"_s, u"writeexcel"_s, u"book"_s);
    user.enter("fileNameDestination", u"${outDir}/orders_${year}.xlsx"_s);
    user.check("urlTag");
    user.enter("namedRange", u"orders"_s);
    user.enter("ToDate", u"day"_s);
    user.check("dateWidths"); // only with date columns
    user.enter("dateFormat", u"yyyy-MM-dd"_s);
    user.press(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    user.type(u"year"_s);
    user.press(Qt::Key_Tab);
    user.type(u"2026"_s); // saving ends the edit
    user.press(Qt::Key_S, Qt::ControlModifier);
    ASSERT_FALSE(user.tab().document()->isModified())
        << user.tab().document()->toXml().toStdString();
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

/// The program itself in another process, with a folder for its settings and its data.
class Program
{
public:
    explicit Program(test::XInput &x)
        : m_x(x)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *const name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
            environment.insert(QLatin1StringView(name), m_folder.path());
        }
        m_process.setProcessEnvironment(environment);
    }
    ~Program() { kill(); }

    QString path(const QString &name) const { return m_folder.filePath(name); }
    void start(const QStringList &files)
    {
        m_process.start(QCoreApplication::applicationDirPath() + u"/corvanta-studio"_s, files);
        ASSERT_TRUE(m_process.waitForStarted());
    }
    /// A click on the background of the canvas, which is in the middle of the screen.
    void activate()
    {
        constexpr int kNoDoubleClickMs = 600;
        m_x.moveTo({800, 500});
        for (int tries = 0; tries < 20 && !m_x.hasFocus(); ++tries) {
            m_x.button(true);
            m_x.button(false);
            QTest::qWait(kNoDoubleClickMs);
        }
        ASSERT_TRUE(m_x.hasFocus());
    }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    /// The recovery file that has `text`; empty if there is none.
    QString recoveryWith(const QByteArray &text) const
    {
        QDirIterator files(m_folder.path(), {u"*.recovery"_s}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            if (contentOf(file).contains(text)) {
                return file;
            }
        }
        return {};
    }

private:
    test::XInput &m_x;
    QTemporaryDir m_folder;
    QProcess m_process;
};

TEST(Session, OffersUnsavedWorkAfterItWasKilled)
{
    constexpr int kMaxMs = 20000;
    const auto x = test::XInput::connect();
    if (x == nullptr) {
        GTEST_SKIP() << "no X server with XTEST";
    }
    Program program(*x);
    const QString graph = program.path(u"work.graph"_s);
    write(graph, "<graph>\n  <!-- kept -->\n  <action id='a'><readCSV/></action>\n</graph>\n");
    program.start({graph});
    program.activate();
    x->key(Qt::Key_Space, Qt::ControlModifier);
    for (const QChar letter : u"sort"_s) {
        x->letter(letter);
    }
    x->key(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !program.recoveryWith("<sort").isEmpty(); }, kMaxMs));
    program.kill();
    EXPECT_FALSE(contentOf(graph).contains("<sort"));

    program.start({}); // with the files of the last session
    ASSERT_TRUE(QTest::qWaitFor([&] { return x->hasFocus(); }, kMaxMs)); // the question
    x->key(Qt::Key_R, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !x->hasFocus(); }, kMaxMs));
    program.activate();
    x->key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return contentOf(graph).contains("<sort"); }, kMaxMs));
    EXPECT_TRUE(contentOf(graph).contains("<!-- kept -->"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return program.recoveryWith("<").isEmpty(); }, kMaxMs));
}

} // namespace
