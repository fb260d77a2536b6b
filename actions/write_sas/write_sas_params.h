// The parameters of writeSAS.
//
// Widths are in bytes of UTF-8, because the format stores texts in columns of fixed width.
#pragma once
#include "actions/shared/params/data_set_params.h"

namespace corvanta {

/// Names of the variables in the data set, which have at most 32 bytes of UTF-8.
enum class VariableNames {
    Truncated, ///< the names of the columns, cut
    Whole,     ///< the same, but a name that is too long fails the run
    Numbered,  ///< C1, C2, ...; the names of the columns become labels
};

/// What happens to a text whose UTF-8 is wider than its column.
enum class WideText {
    Truncate, ///< it is cut, with a warning
    Abort,    ///< the run fails
};

/// The limits and widths of a data set. DataSetParams has the file, the rows and the columns, and
/// the widths that were declared.
struct WriteSasParams : DataSetParams
{
    // What happens to names and texts that exceed the limits of the format.
    VariableNames columnNameMode = VariableNames::Truncated;
    WideText stringStorage = WideText::Truncate;
    // The width of a column, when it is measured and not declared: f1 times its longest text, plus
    // f2 bytes.
    double f1 = 1;
    int f2 = 0;
};

/// Attributes of `writeSAS`, then its child elements.
const ParamTable<WriteSasParams> &writeSasParamTable();

} // namespace corvanta
