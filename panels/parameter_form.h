// panels/parameter_form.h
// The form of an action: one field per declared parameter.
//
// Fields are made from what the action says about its parameters (ActionParameters), so that a new
// parameter needs no code here. An edit reaches the action at once; a value that is not of the
// parameter's type is marked and not taken.
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
    void refresh() override;

private:
    /// The editor of one parameter.
    struct Field
    {
        QWidget *widget = nullptr;
        std::function<void(const QString &value)> show;
    };

    QWidget *makeHeading();
    void addRow(QFormLayout *form, const ParameterInfo &info, int index);
    Field makeField(const ParameterInfo &info, int index);
    Field makeLine(const ParameterInfo &info, int index);
    Field makeFileLine(const ParameterInfo &info, int index);
    Field makeNumber(const ParameterInfo &info, int index);
    Field makeChoice(const ParameterInfo &info, int index);
    Field makeFlag(const ParameterInfo &info, int index);
    Field makeList(int index);
    Field makeText(const ParameterInfo &info, int index);
    QString browse(const ParameterInfo &info, const QString &start);
    void edit(QWidget *field, int index, const QString &value);

    ActionParameters *m_parameters;
    std::vector<Field> m_fields; // by parameter
    bool m_isRefreshing = false;
};

} // namespace corvanta
