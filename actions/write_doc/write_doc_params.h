// The parameters of writeDoc.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

struct WriteDocParams
{
    QString output = QStringLiteral("wordFile");
    QString templateColumn = QStringLiteral("templateFile");
    bool processCR = true;
    bool processLF = false;
    bool inlineImg = true;
    QStringList textColumns;
    QStringList imageColumns;
};

const ParamTable<WriteDocParams> &writeDocParamTable();

} // namespace corvanta
