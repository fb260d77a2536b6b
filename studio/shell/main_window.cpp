// Makes the parts of the window and connects their signals; the parts do not know each other.
#include "studio/shell/main_window.h"

#include "studio/canvas/canvas_view.h"
#include "studio/data/data_view.h"
#include "studio/run/log_panel.h"
#include "studio/run/run_controller.h"
#include "studio/run/run_status.h"
#include "studio/shell/commands.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/editor_hooks.h"
#include "studio/shell/graph_commands.h"
#include "studio/shell/palette/palette.h"
#include "studio/shell/preferences/appearance.h"
#include "studio/shell/preferences/preferences.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/preferences/shortcut_editor.h"
#include "studio/shell/views/help_view.h"
#include "studio/shell/views/outline.h"
#include "studio/shell/views/problem_list.h"
#include "studio/shell/views/property_view.h"
#include "studio/shell/views/variable_table.h"
#include "studio/shell/workspace.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileInfo>
#include <QGraphicsItem>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// Select what is at a place of the view, unless it is selected: commands act on the selection.
void selectItemAt(CanvasView *canvas, QPoint place)
{
    QGraphicsItem *item = canvas->itemAt(place);
    while (item != nullptr && !item->flags().testFlag(QGraphicsItem::ItemIsSelectable)) {
        item = item->parentItem();
    }
    if (item != nullptr && !item->isSelected()) {
        canvas->graphScene().clearSelection();
        item->setSelected(true);
    }
}

} // namespace

MainWindow::MainWindow(const ActionRegistry &registry, Settings &settings)
    : m_registry(registry)
    , m_settings(settings)
    , m_commands(new Commands(this, settings))
    , m_workspace(new Workspace(registry, settings, this))
    , m_palette(new Palette(registry, settings, this))
    , m_properties(new PropertyView(this))
    , m_variables(new VariableTable(this))
    , m_outline(new Outline(this))
    , m_problems(new ProblemList(this))
    , m_help(new HelpView(registry, this))
    , m_logs(new QStackedWidget(this))
    , m_data(new DataView(registry, this))
    , m_runStatus(new RunStatus(this))
    , m_graphCommands(new GraphCommands(*m_commands, *m_workspace))
{
    setObjectName(u"mainWindow"_s);
    setAcceptDrops(true);
    setDockNestingEnabled(true);
    setCentralWidget(m_workspace);
    // Before the first panel, which asks them for its columns.
    setEditorHooks(*m_workspace);
    makeDocks();
    makeMenus();
    statusBar()->addPermanentWidget(m_runStatus);
    connectFileCommands();
    connectViewCommands();
    connectFocusCommands();
    connectHelpCommands();
    connectPanels();
    connectTabs();
    // Last: only docks and bars that exist are restored.
    restoreArrangement();
    showTab();
}

MainWindow::~MainWindow()
{
    // The panels before their documents, and both before the hooks that they call.
    m_properties->show(nullptr, {});
    m_shown = nullptr; // ends the reports of its document
    delete m_workspace;
    resetEditorHooks();
}

void MainWindow::makeDocks()
{
    // The panels at the sides are high: trees and parameters need height more than width.
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    QDockWidget *const palette = addDock(Qt::LeftDockWidgetArea, tr("Palette"), m_palette);
    QDockWidget *const outline = addDock(Qt::LeftDockWidgetArea, tr("Outline"), m_outline);
    QDockWidget *const properties =
        addDock(Qt::RightDockWidgetArea, tr("Properties"), m_properties);
    tabifyDockWidget(properties, addDock(Qt::RightDockWidgetArea, tr("Variables"), m_variables));
    tabifyDockWidget(properties, addDock(Qt::RightDockWidgetArea, tr("Help"), m_help));
    QDockWidget *const problems = addDock(Qt::BottomDockWidgetArea, tr("Problems"), m_problems);
    m_logs->setObjectName(u"logs"_s);
    tabifyDockWidget(problems, addDock(Qt::BottomDockWidgetArea, tr("Log"), m_logs));
    tabifyDockWidget(problems, addDock(Qt::BottomDockWidgetArea, tr("Data"), m_data));
    properties->raise();
    problems->raise();
    // In letters and lines, so that the panels fit to any text size.
    const int letter = fontMetrics().averageCharWidth();
    resizeDocks({palette, properties}, {letter * 42, letter * 60}, Qt::Horizontal);
    const int line = fontMetrics().lineSpacing();
    resizeDocks({problems}, {line * 15}, Qt::Vertical);
    resizeDocks({palette, outline}, {line * 30, line * 11}, Qt::Vertical);
}

QDockWidget *MainWindow::addDock(Qt::DockWidgetArea area, const QString &title, QWidget *content)
{
    auto *const dock = new QDockWidget(title, this);
    // restoreState() finds the docks by these names, so they must stay the same in all versions.
    dock->setObjectName(u"dock."_s + content->objectName());
    dock->setWidget(content);
    addDockWidget(area, dock);
    return dock;
}

void MainWindow::makeMenus()
{
    m_commands->fill(menuBar());
    QToolBar *const bar = addToolBar(tr("Tool bar"));
    // Saved with the arrangement, like the names of the docks.
    bar->setObjectName(u"toolBar"_s);
    m_commands->fill(bar);
    updateIcons();
    // A closed dock has nothing in the window that opens it again.
    QMenu *const docks = m_commands->menu(u"view.docks"_s);
    for (const QDockWidget *const dock : findChildren<QDockWidget *>()) {
        docks->addAction(dock->toggleViewAction());
    }
    docks->addAction(bar->toggleViewAction());
    // Filled when it is opened: each file that is opened or saved changes the list.
    connect(m_commands->menu(u"file.recent"_s), &QMenu::aboutToShow, this,
            &MainWindow::fillRecentMenu);
}

void MainWindow::connectFileCommands()
{
    m_commands->onTrigger("file.new", m_workspace, &Workspace::newDocument);
    m_commands->onTrigger("file.open", m_workspace, &Workspace::openWithDialog);
    m_commands->onTrigger("file.start", m_workspace, &Workspace::showStartPage);
    // The lambdas read the tab when the command runs; here there is none yet.
    m_commands->onTrigger("file.save", this, [this] { m_workspace->save(m_shown); });
    m_commands->onTrigger("file.saveAs", this, [this] { m_workspace->saveAs(m_shown); });
    m_commands->onTrigger("file.saveAll", m_workspace, &Workspace::saveAll);
    m_commands->onTrigger("file.reload", this, [this] { m_workspace->reload(m_shown); });
    m_commands->onTrigger("file.close", this,
                          [this] { m_workspace->close(m_workspace->currentIndex()); });
    m_commands->onTrigger("file.quit", this, &QWidget::close);
}

void MainWindow::connectViewCommands()
{
    m_commands->onTrigger("view.larger", this, [this] { changeFont(10); });
    m_commands->onTrigger("view.smaller", this, [this] { changeFont(-10); });
    // The command ends the use of the theme of the desktop, which only the preferences offer.
    m_commands->onTrigger("view.dark", this, [this](bool isDark) {
        m_settings.setTheme(isDark ? Theme::Dark : Theme::Light);
        applySettings();
    });
    // Not showFullScreen(), which would forget that the window was maximized.
    m_commands->onTrigger("view.fullScreen", this, [this](bool isFull) {
        setWindowState(windowState().setFlag(Qt::WindowFullScreen, isFull));
    });
    // After the last tab comes the first one.
    const auto showTabAt = [this](int step) {
        const int count = m_workspace->count();
        m_workspace->setCurrentIndex((m_workspace->currentIndex() + step + count) % count);
    };
    m_commands->onTrigger("view.nextTab", this, [=] { showTabAt(1); });
    m_commands->onTrigger("view.previousTab", this, [=] { showTabAt(-1); });
    m_commands->onTrigger("edit.preferences", this, [this] {
        Preferences dialog(m_settings, this);
        if (dialog.exec() == QDialog::Accepted) {
            applySettings();
        }
    });
    m_commands->onTrigger("edit.shortcuts", this,
                          [this] { ShortcutEditor(*m_commands, this).exec(); });
}

void MainWindow::connectFocusCommands()
{
    m_commands->onTrigger("view.canvas", this,
                          [this] { m_workspace->currentWidget()->setFocus(); });
    // "graph.add" has no dialog of its own: the palette is the list of all actions.
    const auto search = [this] {
        raise(m_palette);
        m_palette->startSearch();
    };
    m_commands->onTrigger("view.palette", this, search);
    m_commands->onTrigger("graph.add", this, search);
    m_commands->onTrigger("view.properties", this, [this] {
        raise(m_properties);
        m_properties->editName();
    });
    // Names are edited in one place, which also shows why a name is refused.
    m_commands->onTrigger("edit.rename", this, [this] {
        raise(m_properties);
        m_properties->editName();
    });
    m_commands->onTrigger("edit.comment", this, [this] {
        raise(m_properties);
        m_properties->editComment();
    });
    m_commands->onTrigger("edit.variables", this, [this] {
        raise(m_variables);
        m_variables->startEditing();
    });
    m_commands->onTrigger("view.outline", this, [this] { raise(m_outline); });
    m_commands->onTrigger("view.problems", this, [this] { raise(m_problems); });
    m_commands->onTrigger("view.log", this, [this] { raise(m_logs); });
    m_commands->onTrigger("view.data", this, [this] { raise(m_data); });
    m_commands->onTrigger("run.data", this, [this] { raise(m_data); });
}

void MainWindow::connectHelpCommands()
{
    m_commands->onTrigger("help.action", this, [this] {
        const QStringList ids = m_graphCommands->selectedIds();
        // Without an action the page says how to get its help.
        showHelp(ids.isEmpty() ? QString() : m_shown->document()->type(ids.first()));
    });
    m_commands->onTrigger("help.keys", this, [this] { ShortcutEditor(*m_commands, this).exec(); });
    m_commands->onTrigger("help.about", this, &MainWindow::showAbout);
}

void MainWindow::connectPanels()
{
    connect(m_palette, &Palette::actionChosen, this, &MainWindow::addAction);
    connect(m_palette, &Palette::helpRequested, this, &MainWindow::showHelp);
    connect(m_help, &HelpView::pageOpened, this, [this] { raise(m_help); });
    // The tree has the same actions and links as the canvas, so the same keys work there.
    m_commands->addGraphShortcuts(m_outline);
    m_commands->adopt(*m_data, tr("Data"));
    m_commands->adopt(*m_variables, tr("Variables"));
    connect(m_outline, &Outline::selectionChosen, m_graphCommands, &GraphCommands::select);
    connect(m_outline, &Outline::shown, m_graphCommands, &GraphCommands::showAction);
    // Enough to read a sentence; then the tips of the commands have the place again.
    constexpr int kReportMs = 8000;
    connect(m_graphCommands, &GraphCommands::reported, this,
            [this](const QString &text) { statusBar()->showMessage(text, kReportMs); });
    connect(m_problems, &ProblemList::actionChosen, m_graphCommands, &GraphCommands::showAction);
    connect(m_problems, &ProblemList::countChanged, this, [this](int count) {
        // The title is also on the tab of the dock, which is visible when another dock covers it.
        findChild<QDockWidget *>(u"dock.problems"_s)
            ->setWindowTitle(count == 0 ? tr("Problems") : tr("Problems: %1").arg(count));
    });
}

void MainWindow::connectTabs()
{
    connect(m_workspace, &Workspace::tabOpened, this, &MainWindow::connectTab);
    connect(m_workspace, &Workspace::currentTabChanged, this, &MainWindow::showTab);
    connect(m_workspace, &Workspace::titleChanged, this, &MainWindow::updateTitle);
}

void MainWindow::connectTab(DocumentTab *tab)
{
    // The tab deletes it, which also removes it from here.
    m_logs->addWidget(tab->log());
    m_commands->adopt(*tab->log(), tr("Log"));
    connectCanvas(tab->canvas());
    // Runs continue in tabs that are not shown.
    const auto ifShown = [this, tab](auto function) {
        return [this, tab, function] {
            if (tab == m_shown) {
                (this->*function)();
            }
        };
    };
    connect(tab->canvas(), &CanvasView::selectionChanged, this,
            ifShown(&MainWindow::showSelection));
    connect(tab->log(), &LogPanel::actionChosen, m_graphCommands, &GraphCommands::showAction);
    connect(tab->runs(), &RunController::runningChanged, this,
            ifShown(&MainWindow::updateCommands));
    connect(tab->runs(), &RunController::filesWritten, m_data, &DataView::filesWritten);
    connect(tab->runs(), &RunController::finished, this, [this, tab](RunEnd end) {
        if (tab != m_shown) {
            return;
        }
        m_properties->refresh(); // the run may have written the files that the panel looks up
        if (end == RunEnd::Failed || end == RunEnd::Crashed) {
            uncover(m_logs); // which says why; the focus stays where the user works
        }
    });
    GraphDocument *const document = tab->document();
    // Also for edits of the panel itself: refresh() keeps a text that is being typed.
    for (const auto signal : {&GraphDocument::actionChanged, &GraphDocument::columnsChanged}) {
        connect(document, signal, this, [this, tab](const QString &id) {
            if (tab == m_shown && m_properties->shows(id)) {
                m_properties->refresh();
            }
        });
    }
    connect(document, &GraphDocument::actionRenamed, this, ifShown(&MainWindow::showSelection));
    connect(document, &GraphDocument::reloaded, this, ifShown(&MainWindow::showSelection));
    connect(document->undoStack(), &QUndoStack::indexChanged, this,
            ifShown(&MainWindow::updateCommands));
}

void MainWindow::connectCanvas(CanvasView *canvas)
{
    m_commands->addGraphShortcuts(canvas);
    m_commands->adopt(*canvas, tr("Canvas"));
    connect(canvas, &CanvasView::message, m_graphCommands, &GraphCommands::reported);
    connect(canvas, &CanvasView::graphDropped, m_workspace, &Workspace::open);
    connect(canvas, &CanvasView::activated, this, [this] { raise(m_properties); });
    canvas->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(canvas, &QWidget::customContextMenuRequested, this, [this, canvas](QPoint place) {
        // The place of the click says what the commands of the menu are for.
        selectItemAt(canvas, place);
        QMenu menu(this);
        m_commands->fillContextMenu(&menu);
        menu.exec(canvas->viewport()->mapToGlobal(place));
    });
}

void MainWindow::showTab()
{
    m_shown = m_workspace->current();
    GraphDocument *const document = m_shown != nullptr ? m_shown->document() : nullptr;
    // First: the document of the tab before may be destroyed next.
    m_properties->show(nullptr, {});
    m_variables->setDocument(document);
    m_outline->setDocument(document);
    m_problems->setDocument(document);
    m_data->setDocument(document);
    m_runStatus->setController(m_shown != nullptr ? m_shown->runs() : nullptr);
    if (m_shown != nullptr) {
        m_logs->setCurrentWidget(m_shown->log());
    }
    updateTitle();
    showSelection();
}

void MainWindow::showSelection()
{
    GraphDocument *const document = m_shown != nullptr ? m_shown->document() : nullptr;
    const QStringList ids = m_graphCommands->selectedIds();
    m_properties->show(document, ids);
    m_outline->setSelected(ids, m_graphCommands->selectedLinks(), m_graphCommands->selectedNotes());
    if (ids.size() == 1) {
        m_data->showAction(ids.first()); // else the last one stays
    }
    updateCommands();
}

void MainWindow::updateTitle()
{
    // The start page belongs to no file.
    const QString program = tr("Corvanta");
    if (m_shown == nullptr) {
        setWindowTitle(program);
        return;
    }
    // "[*]" is the place of the mark for unsaved changes.
    setWindowTitle(u"%1[*] - %2"_s.arg(m_shown->document()->title(), program));
    setWindowFilePath(m_shown->document()->fileName());
    setWindowModified(m_shown->document()->isModified());
}

void MainWindow::updateCommands()
{
    m_graphCommands->update();
    const bool hasTab = m_shown != nullptr;
    for (const char *const name : {"file.save", "file.saveAs", "file.saveAll", "edit.variables"}) {
        (*m_commands)[QLatin1StringView(name)]->setEnabled(hasTab);
    }
    // A graph that was never saved has no file to read again.
    (*m_commands)[u"file.reload"_s]->setEnabled(hasTab &&
                                                !m_shown->document()->fileName().isEmpty());
}

void MainWindow::addAction(const QString &type)
{
    // On the start page the palette begins a graph.
    if (m_shown == nullptr) {
        m_workspace->newDocument();
    }
    m_graphCommands->addAction(type);
    m_palette->noteUse(type);
}

void MainWindow::fillRecentMenu()
{
    QMenu *const menu = m_commands->menu(u"file.recent"_s);
    menu->clear();
    for (const QString &file : m_settings.recentFiles()) {
        // "&" would be a mnemonic.
        menu->addAction(QString(file).replace(u'&', u"&&"_s), this,
                        [this, file] { m_workspace->open(file); });
    }
    menu->addSeparator();
    menu->addAction(tr("&Clear"), this, [this] { m_settings.clearRecentFiles(); });
}

void MainWindow::uncover(QWidget *content)
{
    // The dock may be closed, or covered by another one.
    if (auto *const dock = qobject_cast<QDockWidget *>(content->parentWidget())) {
        dock->show();
        dock->raise();
    }
}

void MainWindow::raise(QWidget *content)
{
    uncover(content);
    content->setFocus(Qt::ShortcutFocusReason);
}

void MainWindow::changeFont(int percent)
{
    // The settings keep it within their limits.
    m_settings.setFontPercent(m_settings.fontPercent() + percent);
    applySettings();
}

void MainWindow::applySettings()
{
    // For the whole program, the dialogs that are open included.
    applyAppearance(m_settings.theme(), m_settings.fontPercent());
    (*m_commands)[u"view.dark"_s]->setChecked(isDark(palette()));
}

void MainWindow::showHelp(const QString &type)
{
    m_help->showAction(type);
    raise(m_help);
}

void MainWindow::showAbout()
{
    // The number of actions shows whether the module was found.
    const QString text = tr("Corvanta %1, an editor of data-flow graphs.\nActions: %2")
                             .arg(QCoreApplication::applicationVersion(),
                                  QString::number(m_registry.prototypes().size()));
    QMessageBox::about(this, tr("About Corvanta"), text);
}

void MainWindow::restoreArrangement()
{
    (*m_commands)[u"view.dark"_s]->setChecked(isDark(palette()));
    // A first start, or the file of another version.
    if (!restoreGeometry(m_settings.windowGeometry())) {
        // Larger texts need more room, as far as the screen has it.
        const QSize wanted = QSize(1280, 800) * qMax(1.0, m_settings.fontPercent() / 100.0);
        resize(wanted.boundedTo(screen()->availableSize()));
    }
    restoreState(m_settings.windowState());
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    // The desktop may change its theme while the program runs.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        updateIcons();
    }
}

void MainWindow::updateIcons()
{
    const int size = fontMetrics().height() * 4 / 3; // larger texts need larger icons
    setIconSize({size, size});
    m_commands->updateIcons(palette());
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!m_workspace->closeAll()) {
        event->ignore();
        return;
    }
    // Only here: a window that was killed keeps the arrangement of the session before.
    m_settings.setWindow(saveGeometry(), saveState());
    event->accept();
}

// Data files that are dropped outside a canvas have no place in its graph.
void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const auto files = CanvasView::filesOf(*event->mimeData(), m_registry);
    if (!files.graphs.isEmpty() || (m_shown == nullptr && !files.data.isEmpty())) {
        event->acceptProposedAction();
    }
}

// On the start page data files begin a graph.
void MainWindow::dropEvent(QDropEvent *event)
{
    const auto files = CanvasView::filesOf(*event->mimeData(), m_registry);
    if (m_shown == nullptr && !files.data.isEmpty()) {
        m_workspace->newDocument();
        m_shown->canvas()->addDataFiles(files.data + files.others,
                                        m_shown->canvas()->freePosition());
    }
    for (const QString &file : files.graphs) {
        m_workspace->open(file);
    }
    event->acceptProposedAction();
}

} // namespace corvanta::studio
