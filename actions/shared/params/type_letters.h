// The parameter `types` of readers of texts: a letter for each column, separated by commas.
#pragma once
#include "corvanta/action_base.h"
#include "corvanta/action_parameters.h"

#include <string>

namespace corvanta {

/// The letters of readers of texts.
inline constexpr QStringView kTypeLetters = u"KFU";
/// Another letter of readJSON: texts that are values of JSON.
inline constexpr char kJsonLetter = 'J';

/// The parts between the commas of a list, without blanks at their ends; none of an empty list.
QStringList trimmedParts(const QString &list);

/// What `check` reports: letters other than `letters`.
QVector<ParameterProblem> typeProblems(const QString &types, QStringView letters = kTypeLetters);

/// Set `letters` to the letters of `types` for `columns` columns; none at all for an empty text.
/// Returns false, after failing the run, for letters other than `allowed` and for more letters than
/// columns.
bool takeTypeLetters(ActionBase &action, const QString &types, qsizetype columns,
                     std::string *letters, QStringView allowed = kTypeLetters);

/// Fail the run because of a value that is not of the type of its column. `place` is that of the
/// value in the file: "line 3". Returns false.
bool failOnValue(ActionBase &action, const QString &file, const QString &place,
                 const QString &column, const QString &value, char letter);

} // namespace corvanta
