// The window of the editor: tabs with graphs, panels around them, menus and a tool bar.
#pragma once
#include <QMainWindow>

class QStackedWidget;

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

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
    /// Draws the icons in the colours of another theme.
    void changeEvent(QEvent *event) override;
    /// Asks about unsaved changes.
    void closeEvent(QCloseEvent *event) override;
    // Graph files that are dropped anywhere on the window are opened.
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void makeDocks();
    QDockWidget *addDock(Qt::DockWidgetArea area, const QString &title, QWidget *content);
    void makeMenus();
    void connectFileCommands();
    void connectViewCommands();
    /// Commands that put the keyboard focus on a part of the window.
    void connectFocusCommands();
    void connectHelpCommands();
    void connectPanels();
    void connectTabs();
    void connectTab(DocumentTab *tab);
    void restoreArrangement();

    /// Show the current tab in all panels.
    void showTab();
    /// Show what is selected on the canvas in all panels.
    void showSelection();
    void updateTitle();
    void updateCommands();
    void fillRecentMenu();
    /// Show a panel in front of the others and put the keyboard focus on it.
    static void raise(QWidget *content);
    /// Change the size of all texts by percentage points.
    void changeFont(int percent);
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
