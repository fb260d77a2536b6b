// The dialog that lists the shortcuts of all commands and changes them.
#pragma once
#include <QDialog>

class QAction;
class QKeySequenceEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace corvanta::studio {

class Commands;

/// Each change applies immediately. A shortcut that another command has is not set; the dialog
/// names that command. Threads: the GUI thread.
class ShortcutEditor final : public QDialog
{
    Q_OBJECT

public:
    /// `commands` must outlive the dialog.
    explicit ShortcutEditor(Commands &commands, QWidget *parent = nullptr);

private:
    // Called once, by the constructor.
    void makeTree();
    void makeFields();
    /// Hide the commands that do not contain `text` in name or shortcut.
    void filter(const QString &text);
    /// Show the current command in the field.
    void showCurrent();
    /// Give the current command a shortcut, unless another one has it.
    void setKeys(const QKeySequence &keys);
    /// Null without a current command.
    QAction *currentAction() const;
    /// Show the shortcuts of a row.
    void showKeys(QTreeWidgetItem *item);

    Commands &m_commands;
    QLineEdit *m_filter;
    QTreeWidget *m_tree;
    QKeySequenceEdit *m_keys;
    QPushButton *m_clear;
    QPushButton *m_reset;
    QLabel *m_conflict;
};

} // namespace corvanta::studio
