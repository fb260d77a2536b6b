// The form of an action: one field per declared parameter.
//
// Fields are made from what the action says about its parameters (ActionParameters), so that a new
// parameter needs no code here. An edit changes the action immediately. A value that is not of the
// parameter's type leaves the action unchanged, and its field is marked.
// Threads: that of the user interface.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/update_class_widget.h"

#include <functional>
#include <vector>

class QFormLayout;

namespace corvanta {

class ParameterForm : public UpdateClassWidget
{
public:
    /// `action` must implement ActionParameters; the form of any other action is empty.
    ParameterForm(QWidget *parent, ActionItem *action);
    /// Show the current values of the action. Changes nothing in it.
    void refresh() override;

private:
    /// The editor of one parameter.
    struct Field
    {
        QWidget *widget = nullptr; ///< owned by its parent, as all widgets of the form
        /// Puts a value into the widget; values have the form of ActionParameters.
        std::function<void(const QString &value)> show;
    };

    QWidget *makeHeading();
    void addRow(QFormLayout *form, const ParameterInfo &info, int index);
    /// Choose one of the functions below by the type of the parameter. `index` is the number of the
    /// parameter in ActionParameters.
    Field makeField(const ParameterInfo &info, int index);
    Field makeLine(const ParameterInfo &info, int index);
    Field makeFileLine(const ParameterInfo &info, int index);
    Field makeNumber(const ParameterInfo &info, int index);
    Field makeChoice(const ParameterInfo &info, int index);
    Field makeFlag(const ParameterInfo &info, int index);
    Field makeList(int index);
    Field makeText(const ParameterInfo &info, int index);
    /// Ask for a file, starting at `start`. Returns the contracted name; null when the user
    /// cancels.
    QString browse(const ParameterInfo &info, const QString &start);
    /// Pass an edit by the user to the action, and mark `field` when the action rejects it.
    void edit(QWidget *field, int index, const QString &value);

    ActionParameters *m_parameters;
    std::vector<Field> m_fields; // by parameter
    bool m_isRefreshing = false; // signals of widgets are not edits
};

} // namespace corvanta
