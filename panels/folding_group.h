// A group of fields with a heading that shows and hides them.
//
// Labels of all groups of a panel have one width, so that the fields are aligned. Threads: the GUI
// thread.
#pragma once
#include <QCoreApplication>
#include <QWidget>

#include <functional>

class QGridLayout;
class QAbstractButton;
class QLabel;
class QToolButton;

namespace corvanta {

class FieldEditor;
class NoteLabel;

class FoldingGroup final : public QWidget
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::FoldingGroup)

public:
    /// `title` may contain a mnemonic.
    FoldingGroup(const QString &title, QWidget *parent);
    /// Add a field below the others; the group owns the widgets afterwards. `label` is null when
    /// the editor shows it itself. `note` is shown below the editor, `reset` right of it; there is
    /// room for `reset` also while it is hidden.
    void addField(QLabel *label, FieldEditor *editor, NoteLabel *note, QAbstractButton *reset);
    /// Whether addField() puts the label above the editor: the editor is wide, or the label long.
    static bool hasLabelAbove(const QLabel &label, const FieldEditor &editor);
    /// Add a widget below the fields, as wide as the group, which owns it afterwards.
    void addWidget(QWidget *widget);
    /// Set the width of the labels, in pixels.
    void setLabelWidth(int width);
    /// Hide or show the fields. The user does the same with the heading.
    void setFolded(bool isFolded);
    bool isFolded() const { return m_isFolded; }
    /// Set what to call when the user or setFolded() has folded or unfolded the group.
    void setToggled(std::function<void()> toggled) { m_toggled = std::move(toggled); }
    /// Show a remark in the heading, such as the number of values that are set.
    void setStatus(const QString &text, bool isProblem);

protected:
    void changeEvent(QEvent *event) override;

private:
    /// Draw the heading in the current font and colours.
    void updateHeading();

    QToolButton *m_heading;
    NoteLabel *m_status;
    QWidget *m_content;
    QGridLayout *m_grid;
    bool m_isFolded = false;
    std::function<void()> m_toggled = [] {};
};

} // namespace corvanta
