// The separator and the end of lines are texts in saved graphs, so that a person can write them. A
// value that is not allowed fails the run before the target is opened; `check` and the panel say
// the same before a run.
#include "actions/write_csv/write_csv_params.h"

#include "actions/shared/params/csv_separator.h"
#include "corvanta/system.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvanta {

const ParamTable<WriteCsvParams> &writeCsvParamTable()
{
    using P = WriteCsvParams;
    static const ParamTable<P> table{
        text("fileName", &P::fileName)
            .outputFile()
            .required()
            .always()
            .label("File")
            .meaning("Text file to write. A name that ends with .gz gives a compressed file."),
        text("separator", &P::separator)
            .label("Separator")
            .meaning("One ASCII character between two fields."),
        flag("header", &P::header)
            .label("Write the column names in the first line")
            .meaning("Without it the file contains only rows."),
        text("encoding", &P::encoding)
            .label("Encoding")
            .meaning("Name of the encoding, such as windows-1252. A ? replaces characters that it "
                     "does not have."),
        text("lineEnd", &P::lineEnd)
            .label("Line ends")
            .meaning("lf: line feed. crlf: carriage return and line feed."),
    };
    return table;
}

bool hasCrLf(const WriteCsvParams &params)
{
    return params.lineEnd == u"crlf"_s;
}

QVector<ParameterProblem> writeCsvProblems(const WriteCsvParams &params)
{
    QVector<ParameterProblem> problems = separatorProblems(params.separator);
    if (!isKnownEncoding(params.encoding)) {
        problems.append(
            {u"encoding"_s, QCoreApplication::translate("Problems", "the encoding '%1' is unknown")
                                .arg(params.encoding)});
    }
    if (params.lineEnd != u"lf"_s && !hasCrLf(params)) {
        problems.append({u"lineEnd"_s, QCoreApplication::translate(
                                           "Problems", "lineEnd='%1' is neither 'lf' nor 'crlf'")
                                           .arg(params.lineEnd)});
    }
    return problems;
}

} // namespace corvanta
