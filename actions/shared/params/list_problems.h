// Problems of a parameter that is a list of texts of one form.
#pragma once
#include "corvanta/action_parameters.h"

namespace corvanta {

/// One problem for each of `entries` for which `isValid` is false. `text` says what is wrong with
/// the entry, its %1.
template <class IsValid>
QVector<ParameterProblem> listProblems(const QString &parameter, const QStringList &entries,
                                       IsValid isValid, const QString &text)
{
    QVector<ParameterProblem> problems;
    for (const QString &entry : entries) {
        if (!isValid(entry)) {
            problems.append({parameter, text.arg(entry)});
        }
    }
    return problems;
}

} // namespace corvanta
