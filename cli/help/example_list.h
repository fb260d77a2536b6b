// Examples of the saved form of actions and of their parameters.
//
// An action can bring examples in the resource ":/corvanta/examples/TYPE.examples", in UTF-8: a
// line
// "# TITLE" before each element. From them, and from the parameter table, an example of each
// parameter is made.
#pragma once
#include "corvanta/action_parameters.h"

/// The element of an action with the parameters that the title names.
struct Example
{
    QString title;
    QString element; ///< several lines, without a final line feed
};

/// The examples that come with the action; empty for one that has none.
QVector<Example> examplesOf(const QString &type);

/// Makes elements that set one parameter each, with the parameters that it depends on.
class ExampleWriter
{
public:
    /// For the parameters `infos` of the element `name`: an action, or an item of a structure.
    ExampleWriter(QString name, QVector<ParameterInfo> infos, const QVector<Example> &examples);

    /// For the members of a structure.
    ExampleWriter ofItem(const ParameterInfo &structure) const;
    /// An element with a value of `info` from the examples, else with one that is allowed and
    /// differs from the default; and with the parameters that this one or all elements need.
    QString elementWith(const ParameterInfo &info) const;
    /// For each choice of `info` the first element of the examples that has it; or empty.
    QStringList elementsWithChoices(const ParameterInfo &info) const;

private:
    struct Draft;
    void add(const ParameterInfo &info, const QString &value, Draft *draft) const;
    void satisfy(const ParameterInfo::Condition &condition, Draft *draft) const;
    Draft requiredFor(const Draft &draft) const;
    bool holds(const ParameterInfo::Condition &condition, const Draft &draft) const;
    const ParameterInfo *parameter(const QString &name) const;
    QString elementWithValue(const ParameterInfo &info, const QString &value) const;
    QString exampleValue(const ParameterInfo &info) const;

    QString m_name;
    QVector<ParameterInfo> m_infos;
    QString m_text; // all examples, in one element
};
