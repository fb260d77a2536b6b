// The base of all editors of single parameters, and what they know about their parameter.
//
// An editor shows a value that has the form of ActionParameters::parameterValue() and reports each
// edit by the user with the new value in that form. It never changes the action: the panel does.
// docs/panels.md shows how to write one. Threads: the GUI thread.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/meta_info.h"

#include <QKeySequence>
#include <QWidget>

#include <functional>

class ActionItem;
class QLabel;
class QToolButton;

namespace corvanta {

enum class Glyph;

/// What an editor knows. Editors keep a copy.
struct FieldContext
{
    ActionItem *action = nullptr;           ///< outlives the panel
    ActionParameters *parameters = nullptr; ///< the same object; never null
    ParameterInfo info;                     ///< of the parameter, translated except for the unit
    QString label;                          ///< of the field, translated, without colon
    QString meaning;                        ///< translated
};

class FieldEditor : public QWidget
{
public:
    /// Whether an edit is a step of its own, or may be joined with the edits before it (the next
    /// letter of a text).
    enum class Edit { Step, Typing };
    using Edited = std::function<void(const QString &value, Edit kind)>;

    explicit FieldEditor(FieldContext context);

    /// Show a value. Does not report an edit.
    void showValue(const QString &value);
    /// Set what to call after each edit by the user.
    void setEdited(Edited edited) { m_edited = std::move(edited); }
    /// What is wrong with the shown value, as far as only the editor knows; an empty text: nothing.
    virtual ParameterProblem problem() const { return {}; }
    /// Show that the value has a problem, or with an empty text that it has none. The panel shows
    /// the text itself; screen readers get it with the main control.
    virtual void showProblem(const ParameterProblem &problem);
    /// The host may know other input columns, variables or files than before. Changes no value.
    virtual void refreshContext() {}
    /// The action has other values than before. Called a moment after an edit of any field, and
    /// when the panel opens.
    virtual void actionChanged() {}
    /// The user has edited a parameter of the action in this panel. Not called for undo and redo.
    virtual void parameterEdited(const QString & /*name*/) {}
    /// Whether the editor needs the whole width of the panel, with its label above it.
    virtual bool isWide() const { return false; }
    /// Whether the editor shows the label itself, next to a check box. Then it implements
    /// setLabel().
    virtual bool showsLabel() const { return false; }
    /// Show `text`, which may contain a mnemonic ("&File").
    virtual void setLabel(const QString & /*text*/) {}

    const FieldContext &context() const { return m_context; }

protected:
    virtual void setValue(const QString &value) = 0;
    /// The control that setMainControl() was called with.
    QWidget *mainControl() const { return focusProxy(); }
    /// Report an edit. Does nothing while showValue() runs, because the signals of some widgets do
    /// not distinguish users and programs.
    void report(const QString &value, Edit kind = Edit::Step);
    /// Make `control` the one that gets the focus from the label, and name it after the parameter.
    void setMainControl(QWidget *control);
    /// Give any other control its accessible name and its tool tip.
    void nameControl(QWidget *control, const QString &name, const QString &toolTip = {});
    /// A button with a picture. `name` is its accessible name and tool tip; `key` does the same in
    /// the main control, which handles it, and is part of the tool tip.
    QToolButton *makeButton(Glyph glyph, const QString &name, std::function<void()> clicked,
                            const QKeySequence &key = {});
    /// The value of any parameter of the action.
    QString parameter(const QString &name) const;
    /// The columns of input pin 0, as far as the host knows them.
    TableSchema inputColumns() const;

private:
    FieldContext m_context;
    Edited m_edited = [](const QString &, Edit) {};
    bool m_isShowing = false;
};

/// Makes the editor that a panel wants for a parameter, instead of the one for its type.
using MakeEditor = FieldEditor *(*)(const FieldContext &context);

/// A MakeEditor for the class `Editor`.
template <class Editor> FieldEditor *editor(const FieldContext &context)
{
    return new Editor(context);
}

/// The editor for the type of the parameter. The caller owns it.
FieldEditor *makeEditor(const FieldContext &context);

/// A label, meaning or choice of a parameter table in the language of the user.
QString translated(const QString &text);
/// The unit of a parameter as it is written after `count`, in the language of the user: "row" for
/// 1, "rows" for 2.
QString unitText(const QString &unit, int count);
/// A value as texts show it: the text of a choice, on and off, or what a number means. `info` is
/// translated.
QString shownValue(const ParameterInfo &info, const QString &value);
/// The system's font for text of a file, as large as `font`: its own size need not follow the
/// user's.
QFont fixedFont(const QFont &font);
/// Labels left of fields have at most a third of the width of a form.
inline constexpr int kLabelShare = 3;
/// The width of a label on one line.
int fullWidth(const QLabel &label);
/// Whether labels belong above the fields of a form that is `width` pixels wide.
bool isNarrow(const QWidget &form, int width);
/// The label before a field, with a colon unless it is a sentence.
QString captionOf(const QString &label);
/// The tool tip of a field: the name of the attribute, its meaning and its default.
QString toolTipOf(const FieldContext &context);

} // namespace corvanta
