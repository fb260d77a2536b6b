// The window of the editor: tabs with graphs, panels around them, menus and a tool bar.
#pragma once
#include <QMainWindow>

class QStackedWidget;

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

class CanvasView;
class Commands;
class DataView;
class DocumentTab;
class GraphCommands;
class HelpView;
class Outline;
class Palette;
class ProblemList;
class PropertyView;
class RunStatus;
class Settings;
class VariableTable;
class Workspace;

/// Threads: the GUI thread. At most one exists at a time, because the panels of actions report to
/// it.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// Both must outlive the window.
    MainWindow(const ActionRegistry &registry, Settings &settings);
    ~MainWindow() override;

    Workspace *workspace() const { return m_workspace; }
    Commands &commands() const { return *m_commands; }
    /// Add an action to the current graph, or to a new one; see GraphCommands::addAction().
    void addAction(const QString &type);
    /// Describe an action and its parameters; an empty type: what the panel shows at the start.
    void showHelp(const QString &type);

protected:
    /// Draws the icons again for another theme or text size.
    void changeEvent(QEvent *event) override;
    /// Asks about unsaved changes.
    void closeEvent(QCloseEvent *event) override;
    // Graph files that are dropped anywhere on the window are opened.
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    /// Make all panels around the canvas, in the arrangement of a first start.
    void makeDocks();
    /// `content` gets a panel of its own, whose object name begins with "dock.".
    QDockWidget *addDock(Qt::DockWidgetArea area, const QString &title, QWidget *content);
    /// Make the menus and the tool bar from the table of the commands.
    void makeMenus();
    /// Commands of the menu "File", except "Export".
    void connectFileCommands();
    /// Commands that change how the window looks, and the dialogs of the preferences.
    void connectViewCommands();
    /// Commands that put the keyboard focus on a part of the window.
    void connectFocusCommands();
    void connectHelpCommands();
    /// Signals of the panels that belong to the window, not to a tab.
    void connectPanels();
    void connectTabs();
    /// Signals of a tab; those of a tab that is not shown change nothing in the panels.
    void connectTab(DocumentTab *tab);
    /// Shortcuts, context menu and messages of a canvas.
    void connectCanvas(CanvasView *canvas);
    /// Show the window as the last session has left it.
    void restoreArrangement();

    /// Show the current tab in all panels.
    void showTab();
    /// Show what is selected on the canvas in all panels.
    void showSelection();
    /// Name the current graph in the title of the window.
    void updateTitle();
    /// Draw the icons of the tool bar in the colours and the text size of the window.
    void updateIcons();
    /// Enable the commands that are possible now.
    void updateCommands();
    /// Fill the menu of recent files each time it is opened.
    void fillRecentMenu();
    /// Show a panel in front of the others.
    static void uncover(QWidget *content);
    /// The same, and put the keyboard focus on it.
    static void raise(QWidget *content);
    /// Change the size of all texts by percentage points.
    void changeFont(int percent);
    /// Use the colours and the text size of the settings.
    void applySettings();
    void showAbout();

    const ActionRegistry &m_registry;
    Settings &m_settings;
    Commands *m_commands;
    Workspace *m_workspace;
    Palette *m_palette;
    PropertyView *m_properties;
    VariableTable *m_variables;
    Outline *m_outline;
    ProblemList *m_problems;
    HelpView *m_help;
    QStackedWidget *m_logs; // one panel per tab
    DataView *m_data;
    RunStatus *m_runStatus;
    GraphCommands *m_graphCommands;
    DocumentTab *m_shown = nullptr; // whose document the panels show; null: none
};

} // namespace corvanta::studio
