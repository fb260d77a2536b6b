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
    Valid,     ///< the names of the columns as SAS accepts them everywhere; they become labels, too
};

/// The limits and widths of a data set. DataSetParams has the file, the rows and the columns, and
/// the widths that were declared.
struct WriteSasParams : DataSetParams
{
    VariableNames columnNameMode = VariableNames::Truncated;
    // The width of a column that is measured (autoWidth): f1 times its longest text, plus f2 bytes.
    double f1 = 1;
    int f2 = 0;
};

/// Attributes of `writeSAS`, then its child elements.
const ParamTable<WriteSasParams> &writeSasParamTable();

} // namespace corvanta
