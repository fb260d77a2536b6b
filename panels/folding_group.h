// A group of fields with a heading that shows and hides them.
//
// Labels are left of their fields, with one width in all groups of a panel, or in a narrow panel
// above them. Threads: the GUI thread.
#pragma once
#include <QCoreApplication>
#include <QWidget>

#include <functional>
#include <vector>

class QAbstractButton;
class QGridLayout;
class QHBoxLayout;
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
    /// the editor shows it itself. `note` is shown below the editor, `reset` right of it or of its
    /// label; there is room for `reset` also while it is hidden.
    void addField(QLabel *label, FieldEditor *editor, NoteLabel *note, QAbstractButton *reset);
    /// Add a widget below the fields, as wide as the group, which owns it afterwards.
    void addWidget(QWidget *widget);
    /// Put labels left of their fields, wrapped to `width` pixels; 0: above their fields.
    void setLabelWidth(int width);
    /// In pixels, of the longest label that can be left of its field.
    int longestLabel() const;
    /// In pixels, of all fields with such a label width; also while they are hidden.
    int minimumWidth(int labelWidth) const;
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
    /// A field, with three rows of the grid: its label if it is above, its editor, its note.
    struct Field
    {
        QLabel *label;
        FieldEditor *editor;
        NoteLabel *note;
        QAbstractButton *reset;
        int row; ///< the first one
    };

    void place(const Field &field, int labelWidth);
    /// Draw the heading in the current font and colours.
    void updateHeading();

    QHBoxLayout *m_headingRow;
    QToolButton *m_heading;
    NoteLabel *m_status;
    QWidget *m_content;
    QGridLayout *m_grid;
    std::vector<Field> m_fields;
    std::vector<QWidget *> m_widgets; // of addWidget()
    bool m_isFolded = false;
    std::function<void()> m_toggled = [] {};
};

} // namespace corvanta
