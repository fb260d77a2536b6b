// The parameters of writeSASXPT.
//
// Widths are in bytes of the encoding, because the format stores texts in columns of fixed width.
#pragma once
#include "actions/shared/params/data_set_params.h"

namespace corvanta {

/// DataSetParams has the file, the rows, the columns and their widths.
struct WriteSasXptParams : DataSetParams
{
    /// Version 8 of the format instead of 5.
    bool version8 = false;
    /// UTF-8, or the iconv name of an encoding with one byte per character.
    QString encoding = QStringLiteral("UTF-8");
    /// Bytes of numbers without a width of their own (VariableDefinition).
    int numberWidth = 8;
};

/// Attributes of `writeSASXPT`, then its child elements.
const ParamTable<WriteSasXptParams> &writeSasXptParamTable();

} // namespace corvanta
