// Edits panels as a user does, by keys and the mouse. For tests only.
#pragma once
#include "tests/panels/panel_support.h"

namespace panels {

/// The types of all actions, as parameters of tests.
std::vector<std::string> testedTypes();
/// A panel that is on the screen, with all groups shown.
Panel shown(const Action &action);
/// Make the conditions of a parameter true.
void satisfy(ActionParameters &parameters, const ParameterInfo &info);
/// Enter another value by keys or the mouse. Returns the value that the parameter must then have.
QString enterValue(QWidget *field, const ParameterInfo &info, const QString &old);

} // namespace panels
