// The parameters of writeCSV.
#pragma once
#include "actions/shared/row_writer.h"
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Parameters as saved; the table has their meaning.
struct WriteCsvParams : RowWriterParams
{
    QString fileName;
    QString separator = QStringLiteral(",");
    bool header = true;
    QString encoding = QStringLiteral("UTF-8");
    QString lineEnd = QStringLiteral("lf");
};

/// Constant; made by the first call.
const ParamTable<WriteCsvParams> &writeCsvParamTable();

/// What is wrong with the values: a run then fails with the first problem.
QVector<ParameterProblem> writeCsvProblems(const WriteCsvParams &params);

/// Whether lines end with CR LF. The value of lineEnd has no problem.
bool hasCrLf(const WriteCsvParams &params);

} // namespace corvanta
