// The parameters of readCSV.
#pragma once
#include "codecs/csv/text_reader.h"
#include "corvanta/action_parameters.h"
#include "corvanta/params/param_table.h"

#include <string>
#include <vector>

namespace corvanta {

/// Parameters as saved; the table has their meaning. Lists in one text are separated by commas.
struct ReadCsvParams
{
    QString fileName;
    QString separator = QStringLiteral(",");
    QString types;
    bool header = true;
    QString sortedOn;
    bool fileNameFromPin = false;
    bool outputFilenames = false;
    QString encoding = QStringLiteral("UTF-8");
    QString decimal = QStringLiteral(".");
    QStringList dateFormat; ///< COLUMN=FORMAT or COLUMN,COLUMN=FORMAT
    int skipRows = 0;
    QString comment;
    QString quote = QStringLiteral("\"");
    QString nullValues;
    QString ragged = QStringLiteral("error");
    QString lineEnd = QStringLiteral("lf");
    bool uniqueNames = false;
};

/// Constant; made by the first call.
const ParamTable<ReadCsvParams> &readCsvParamTable();

/// What is wrong with the values: a run then fails with the first problem.
QVector<ParameterProblem> readCsvProblems(const ReadCsvParams &params);

/// A date format of some columns.
struct CsvDateFormat
{
    QStringList columns;
    QString format; ///< in Qt's syntax, as for DateParser
};

/// The values without problems in the form that files are read with.
struct CsvForm
{
    csv::TextForm text;
    bool hasHeader = true;
    bool uniqueNames = false;
    char decimal = '.';
    bool fillsRagged = false;
    QStringList types;
    std::vector<QByteArray> nullValues; ///< UTF-8
    std::vector<CsvDateFormat> dateFormats;
};
CsvForm csvFormOf(const ReadCsvParams &params);

} // namespace corvanta
