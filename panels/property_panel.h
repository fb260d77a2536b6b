// The property panel of an action: a heading and groups of fields, made from a layout and the
// action's parameter table.
//
// An edit reaches the action immediately and is reported to the host (MainUI). A value that is not
// of the parameter's type leaves the action unchanged, and its field says so. Fields that the
// action ignores are disabled and say why. The values are checked after each edit, in the
// background as far as files are looked up. Threads: the GUI thread.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/edit/worker.h"
#include "corvanta/update_class_widget.h"
#include "panels/panel_layout.h"

#include <QCoreApplication>
#include <QTimer>

#include <vector>

class QAction;
class QLabel;
class QScrollArea;
class QToolButton;

namespace corvanta {

class FoldingGroup;
class Mnemonics;
class NoteLabel;
class PanelHeading;

class PropertyPanel : public UpdateClassWidget
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::PropertyPanel)

public:
    /// `action` must implement ActionParameters; the panel of any other action has no fields.
    PropertyPanel(QWidget *parent, ActionItem *action, const PanelLayout &layout);
    ~PropertyPanel() override;
    /// Show the current values of the action. Changes nothing in it.
    void refresh() override;
    /// At most kMaxHeight high; what does not fit scrolls.
    QSize sizeHint() const override;
    /// Check the values now instead of a moment after the last edit, and show the problems when
    /// they are known.
    void validate();

    /// In pixels, at the default font.
    static constexpr int kMaxHeight = 700;

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// One field and the widgets around it, which their group owns.
    struct Row
    {
        int index = 0; ///< of the parameter in ActionParameters
        size_t group = 0;
        FieldEditor *editor = nullptr;
        QLabel *label = nullptr; ///< null when the editor shows it
        NoteLabel *note = nullptr;
        QAction *reset = nullptr;           ///< back to the default; enabled if the value differs
        QToolButton *resetButton = nullptr; ///< the same
        QString condition;        ///< why the action ignores the value; empty: it does not
        QString rejected;         ///< why the last edit did not reach the action; empty: it did
        bool isEdited = false;    ///< by the user, in this panel
        ParameterProblem problem; ///< of the value; an empty text: none
    };

    // Called once, by the constructor; rows and groups never change afterwards.
    /// Make all groups, "Advanced" with the parameters that no group names included.
    void addGroups(const PanelLayout &layout);
    void addGroup(const PanelGroup &group, Mnemonics &mnemonics);
    void addField(const PanelField &field, Mnemonics &mnemonics);
    /// Make the action and the button that set the default, and the context menu with the action.
    void addReset(Row &row, size_t position);
    /// Put the labels where a panel of this width has room for them.
    void arrangeLabels(int panelWidth);
    /// Of the panel in pixels, if labels have `labelWidth`; see FoldingGroup::setLabelWidth().
    int widthWithLabels(int labelWidth) const;
    /// Make the texts of disabled fields readable in the palette of the panel.
    void updatePalette();
    /// Keep the panel as wide as its fields need: it scrolls only vertically.
    void updateMinimumWidth();

    /// Pass an edit by the user to the action.
    void edit(Row &row, const QString &value, FieldEditor::Edit kind);
    /// Whether a reset changes the value. A required value has no default to return to.
    bool hasOtherDefault(const Row &row) const;
    /// Set the default, as an edit by the user.
    void reset(Row &row);
    /// Enable and disable fields, and show notes and the remarks of the groups.
    void updateRows();
    /// Show the problems that are known.
    void showProblems();
    void updateStatus(size_t group);
    /// Show the problem of a row or, if there is none, why it is disabled.
    void showNote(Row &row, bool showsCondition);
    /// The first problem of a row.
    ParameterProblem problemOf(const Row &row) const;
    /// "Used only when ...", with the labels of the parameters.
    QString conditionText(const ParameterInfo::Condition &condition) const;
    /// By name, translated; null if there is none.
    const ParameterInfo *infoOf(const QString &name) const;

    ActionParameters *m_parameters;
    QVector<ParameterInfo> m_infos; // translated; by number of the parameter
    PanelHeading *m_heading;
    QScrollArea *m_scroll;
    NoteLabel *m_problem; // of the whole action
    std::vector<FoldingGroup *> m_groups;
    std::vector<Row> m_rows; // in the order of the panel
    std::vector<PanelExtra *> m_extras;
    int m_labelWidth = 0; // see FoldingGroup::setLabelWidth()
    QTimer m_validation;
    Worker m_worker;
    QVector<ParameterProblem> m_problems; // that the last check has found
    int m_series = 0;                     // of joined edits; see ParameterEdit::series
};

} // namespace corvanta
