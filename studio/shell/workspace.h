// The open graphs as tabs: opening, saving, closing, recovery.
#pragma once
#include "studio/document/graph_document.h"

#include <QTabWidget>

namespace corvanta::studio {

class DocumentTab;
class Settings;
class StartPage;

/// Asks before unsaved changes are lost. Threads: the GUI thread.
class Workspace final : public QTabWidget
{
    Q_OBJECT

public:
    /// Both must outlive the workspace.
    Workspace(const ActionRegistry &registry, Settings &settings, QWidget *parent = nullptr);
    ~Workspace() override;

    /// The tab that is shown; null if it is the start page.
    DocumentTab *current() const;
    QVector<DocumentTab *> tabs() const;
    const ActionRegistry &registry() const { return m_registry; }

    void newDocument();
    /// Open a graph file in a new tab, or show the tab that has it. Returns false after showing why
    /// the file cannot be opened.
    bool open(const QString &fileName);
    /// Let the user choose files, and open them.
    void openWithDialog();
    /// Open an example. If its folder cannot be written to, a copy of the folder is made in the
    /// documents of the user, because a run writes there.
    void openExample(const QString &fileName);
    /// Show the start page in a tab.
    void showStartPage();

    /// Make the edit of the field that has the focus a step of its document, as leaving the field
    /// does. Call before a graph is saved or run by a shortcut.
    static void finishEditing();
    /// Returns false if the user cancelled or the file cannot be written, which is shown.
    bool save(DocumentTab *tab);
    bool saveAs(DocumentTab *tab);
    bool saveAll();
    /// Read the file again; asks first if there are unsaved changes.
    void reload(DocumentTab *tab);
    /// Close a tab; asks first if its graph is running or has unsaved changes. Returns false if the
    /// user cancelled.
    bool close(int index);
    /// Close all tabs and remember their files for the next session. Returns false if the user
    /// cancelled; then all are still open.
    bool closeAll();

    /// Open the files of the last session.
    void reopenFiles();
    /// Offer the unsaved changes of a session that ended unexpectedly.
    void offerRecovery();

Q_SIGNALS:
    /// Another tab is shown, or none. The document of a tab that is closed is destroyed afterwards.
    void currentTabChanged();
    /// A tab was added.
    void tabOpened(corvanta::studio::DocumentTab *tab);
    void titleChanged();

private:
    /// Show a document in a new tab.
    DocumentTab *add(std::unique_ptr<GraphDocument> document);
    /// The tab that has the file; null if it is not open.
    DocumentTab *findTab(const QString &fileName) const;
    /// Save the document; returns false after showing why that is impossible.
    bool write(DocumentTab *tab, const QString &fileName);
    /// Ask about a run in progress and about unsaved changes. Returns false if the user cancelled.
    bool mayClose(DocumentTab *tab);
    /// Save, discard or cancel. Returns false for cancel.
    bool askToSave(DocumentTab *tab);
    /// Close a tab without a question.
    void removeTabOf(DocumentTab *tab);
    /// Open recovered graphs, in place of their saved versions.
    void recover(const QVector<GraphDocument::Recovery> &recoveries);
    /// Ask a question in a dialog; `buttons` and the answer are QMessageBox::StandardButtons.
    int ask(const QString &title, const QString &question, int buttons);
    /// Show why something was not done.
    void showFailure(const QString &text);
    /// Show the name of the graph on its tab.
    void updateTitle(DocumentTab *tab);
    /// Keep the list of open files for the next session, also after a crash.
    void rememberFiles();

    const ActionRegistry &m_registry;
    Settings &m_settings;
    StartPage *m_start;
    bool m_isClosing = false; // all tabs; the list of open files is already saved
};

} // namespace corvanta::studio
