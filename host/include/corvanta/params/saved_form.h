// Compares the saved form of parameters with their declarations, to find mistakes that reading
// accepts silently: misspelled names, values of the wrong type or out of range, texts that are not
// read.
//
// Reading never fails, because old and edited graphs must open. These functions tell the user what
// was not understood. Threads: pure functions.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/global_parameters.h"
#include "corvanta/xml_node.h"

namespace corvanta {

/// Whether `text`, with its variables replaced, is a value of the parameter. For a Structure or a
/// list use savedFormProblems().
CORVANTA_EXPORT bool isAllowedValue(const ParameterInfo &info, const QString &text);
/// The values that are allowed, for a message: "0 (bar), 1 (line)", "a whole number from 1 to 7".
CORVANTA_EXPORT QString allowedValues(const ParameterInfo &info);

/// Something in a saved form that the action does not read as the user meant it.
struct SavedFormProblem
{
    /// NotExpanded: a known `${NAME}` that the action takes literally. Everything else, such as
    /// unknown names and wrong values, is a Mistake.
    enum class Kind { Mistake, NotExpanded };

    int line = 0; ///< of the element in its document, 1-based
    QString text; ///< begins in lower case, without a full stop
    Kind kind = Kind::Mistake;
};

/// Everything in `element`, which holds the saved parameters `infos`, that is unknown, not allowed
/// or not read, in the order of the document. `global` expands texts; null: nothing is expanded.
CORVANTA_EXPORT QVector<SavedFormProblem> savedFormProblems(const XMLNode &element,
                                                            const QVector<ParameterInfo> &infos,
                                                            const GlobalParameters *global);

} // namespace corvanta
