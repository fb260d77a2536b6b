// The parameters of readCSV, and the form in which a run uses them.
//
// Texts of graphs are checked once, before the first file: a run takes a CsvForm, in which
// everything is valid. Threads: plain data.
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
    QString fileName; ///< or a pattern; expanded before use
    QString separator = QStringLiteral(",");
    QString types;      ///< K, F or U for each column; empty: all columns are texts
    bool header = true; ///< the first record has the names of the columns
    QString sortedOn;   ///< columns by which the rows are said to be sorted
    bool fileNameFromPin = false;
    bool outputFilenames = false;
    QString encoding = QStringLiteral("UTF-8");
    QString decimal = QStringLiteral(".");
    QStringList dateFormat; ///< COLUMN=FORMAT or COLUMN,COLUMN=FORMAT
    int skipRows = 0;       ///< lines before the header
    QString comment;        ///< lines that begin with it are skipped; empty: none
    QString quote = QStringLiteral("\"");
    QString nullValues;                       ///< texts without quotes that are missing values
    QString ragged = QStringLiteral("error"); ///< rows with too few or too many fields
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
    char decimal = '.';       ///< of numbers in fields
    bool fillsRagged = false; ///< rows of another length are filled or cut, with a warning
    QStringList types;        ///< one letter per column; empty: all are texts
    std::vector<QByteArray> nullValues; ///< UTF-8
    std::vector<CsvDateFormat> dateFormats;
};
/// Only for parameters without problems.
CsvForm csvFormOf(const ReadCsvParams &params);

} // namespace corvanta
