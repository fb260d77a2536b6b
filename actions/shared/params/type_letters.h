// The parameter `types` of readers of texts: a letter for each column, separated by commas.
#pragma once
#include "corvanta/action_base.h"
#include "corvanta/action_parameters.h"

#include <string>

namespace corvanta {

/// The parts between the commas of a list, without blanks at their ends; none of an empty list.
QStringList trimmedParts(const QString &list);

/// What `check` reports: letters other than K, F and U.
QVector<ParameterProblem> typeProblems(const QString &types);

/// Set `letters` to the letters of `types` for `columns` columns; none at all for an empty text.
/// Returns false, after failing the run, for other letters and for more letters than columns.
bool takeTypeLetters(ActionBase &action, const QString &types, qsizetype columns,
                     std::string *letters);

/// Fail the run because of a value that is not of the type of its column. `place` is that of the
/// value in the file: "line 3". Returns false.
bool failOnValue(ActionBase &action, const QString &file, const QString &place,
                 const QString &column, const QString &value, char letter);

} // namespace corvanta
