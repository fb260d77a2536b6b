// The page of a window without a graph: what can be opened.
#pragma once
#include <QWidget>

class QListWidget;
class QVBoxLayout;

namespace corvanta::studio {

class Settings;

/// Buttons for a new graph and an existing one, the recent files, and the examples with what each
/// shows. Threads: the GUI thread.
class StartPage final : public QWidget
{
    Q_OBJECT

public:
    /// `settings` must outlive the page.
    explicit StartPage(const Settings &settings, QWidget *parent = nullptr);
    /// Show the recent files of the settings; those that no longer exist are disabled.
    void refresh();

Q_SIGNALS:
    /// The user wants an empty graph.
    void newRequested();
    /// The user wants to choose a file.
    void openRequested();
    /// A recent file was chosen.
    void fileChosen(const QString &fileName);
    /// An example was chosen, which is to be opened as a copy when its folder is read-only.
    void exampleChosen(const QString &fileName);

protected:
    void showEvent(QShowEvent *event) override;

private:
    // Called once, by the constructor.
    void addButtons(QVBoxLayout *layout);
    QListWidget *addList(QVBoxLayout *layout, const QString &title, const QString &name);
    /// The examples do not change while the program runs.
    void fillExamples();

    const Settings &m_settings;
    QListWidget *m_recent;
    QListWidget *m_examples;
};

} // namespace corvanta::studio
