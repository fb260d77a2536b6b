// All settings are texts in saved graphs. They are checked together and then become a CsvForm,
// which has the types that the reader needs, so that nothing is parsed again per file.
#include "actions/read_csv/read_csv_params.h"

#include "actions/shared/params/csv_separator.h"
#include "actions/shared/params/list_problems.h"
#include "actions/shared/params/reader_params.h"
#include "actions/shared/params/type_letters.h"
#include "corvanta/system.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using P = ReadCsvParams;

constexpr QLatin1StringView kAuto("auto");

/// How the bytes of a file become fields.
ParamGroup<P> textForm()
{
    return {
        text("encoding", &P::encoding)
            .label("Encoding")
            .meaning("Name of the encoding, such as windows-1252. auto: that of a byte-order mark, "
                     "else UTF-8 or UTF-16 if the text is valid, else that of the system."),
        text("decimal", &P::decimal)
            .label("Decimal point")
            .meaning("The character between the digits of decimal numbers (F): a point or a comma, "
                     "for example."),
        strings("dateFormat", &P::dateFormat)
            .label("Date formats")
            .meaning("Dates to convert to ISO 8601, one entry COLUMN=FORMAT each, such as "
                     "day=dd.MM.yyyy; several columns are separated by commas."),
        number("skipRows", &P::skipRows)
            .range(0, 1000000000)
            .unit("lines")
            .label("Skip")
            .meaning("Number of lines before the column names that are not read."),
        text("comment", &P::comment)
            .label("Comment lines begin with")
            .meaning("Lines that begin with this text are not read. Empty: there are none."),
        text("quote", &P::quote)
            .label("Quote")
            .meaning("One ASCII character around fields that hold separators or line ends. Empty: "
                     "fields have no quotes."),
        text("nullValues", &P::nullValues)
            .label("Missing values")
            .meaning("Fields without quotes that are missing values, separated by commas, such as "
                     "NA,NULL. Empty fields always are."),
        text("ragged", &P::ragged)
            .label("Lines of another length")
            .meaning("Lines with another number of fields. error: the run fails. fill: missing "
                     "values fill short lines, and fields beyond the last column are dropped."),
        text("lineEnd", &P::lineEnd)
            .label("Line ends")
            .meaning("lf: a line feed, with or without a carriage return before it. auto: "
                     "carriage returns alone if the first 64 KiB have no line feed."),
        flag("uniqueNames", &P::uniqueNames)
            .onlyWhen("header", {QStringLiteral("1")})
            .label("Number equal column names")
            .meaning("The second and later columns of one name get _2, _3, ... Off: they keep the "
                     "name, which most file formats do not allow."),
    };
}

bool isAuto(const QString &text)
{
    return text.compare(kAuto, Qt::CaseInsensitive) == 0;
}

/// One ASCII character that does not end lines.
bool isOneCharacter(const QString &text)
{
    return text.size() == 1 && text[0].unicode() < 0x80 && text[0] != u'\r' && text[0] != u'\n';
}

/// Without a quote, every quote is a character of a field.
bool isUsableQuote(const ReadCsvParams &params)
{
    return params.quote.isEmpty() ||
           (isOneCharacter(params.quote) && params.quote != params.separator);
}

/// The decimal sign and the quote must differ from what ends a field.
QVector<ParameterProblem> characterProblems(const QString &name, const QString &value, bool isValid)
{
    const QString text = QCoreApplication::translate(
        "Problems", "%1='%2' is not one ASCII character other than the separator");
    return isValid ? QVector<ParameterProblem>()
                   : QVector<ParameterProblem>{{name, text.arg(name, value)}};
}

/// The first "=" separates, because a format may have some. The left side is a list of columns.
std::optional<CsvDateFormat> dateFormatOf(const QString &entry)
{
    const qsizetype equals = entry.indexOf(u'=');
    if (equals <= 0 || equals + 1 == entry.size()) {
        return std::nullopt;
    }
    return CsvDateFormat{trimmedParts(entry.left(equals)), entry.mid(equals + 1)};
}

} // namespace

const ParamTable<ReadCsvParams> &readCsvParamTable()
{
    static const ParamTable<P> table{
        shared::fileName<P>(
            "Text file to read, or a pattern such as *.csv; all files must have the columns of the "
            "first. Also .gz, .Z and .rar files and members of .zip files (archive.zip@member)."),
        text("separator", &P::separator)
            .label("Separator")
            .meaning("One ASCII character between two fields. auto: the comma, semicolon, tab or "
                     "vertical bar that the first 64 KiB suggest."),
        text("types", &P::types)
            .label("Column types")
            .meaning("One letter per column, separated by commas: K (whole number), F (decimal "
                     "number), U (text). "
                     "Columns without a letter are texts."),
        flag("header", &P::header)
            .label("First line holds the column names")
            .meaning(
                "Reads the column names from the first line. Off: columns are named C1, C2, ..."),
        text("sortedOn", &P::sortedOn)
            .label("Sorted on")
            .meaning(
                "Names of the columns that the table is declared sorted on, separated by commas."),
        shared::fileNamesFromPin<P>(),
        shared::outputFilenames<P>(),
        textForm(),
    };
    return table;
}

/// All problems, in the order of the panel, so that one run of `check` shows them together.
QVector<ParameterProblem> readCsvProblems(const ReadCsvParams &params)
{
    QVector<ParameterProblem> problems;
    if (!isAuto(params.separator)) {
        problems << separatorProblems(params.separator);
    }
    problems << typeProblems(params.types);
    if (!isAuto(params.encoding) && !isKnownEncoding(params.encoding)) {
        problems.append(
            {u"encoding"_s, QCoreApplication::translate("Problems", "the encoding '%1' is unknown")
                                .arg(params.encoding)});
    }
    problems << characterProblems(u"decimal"_s, params.decimal, isOneCharacter(params.decimal))
             << characterProblems(u"quote"_s, params.quote, isUsableQuote(params))
             << listProblems(u"dateFormat"_s, params.dateFormat, dateFormatOf,
                             QCoreApplication::translate("Problems",
                                                         "'%1' is not of the form COLUMN=FORMAT"));
    if (params.ragged != u"error"_s && params.ragged != u"fill"_s) {
        problems.append({u"ragged"_s, QCoreApplication::translate(
                                          "Problems", "ragged='%1' is neither 'error' nor 'fill'")
                                          .arg(params.ragged)});
    }
    if (params.lineEnd != u"lf"_s && !isAuto(params.lineEnd)) {
        problems.append({u"lineEnd"_s, QCoreApplication::translate(
                                           "Problems", "lineEnd='%1' is neither 'lf' nor 'auto'")
                                           .arg(params.lineEnd)});
    }
    return problems;
}

/// The parameters have no problems: readCsvProblems() has found none.
CsvForm csvFormOf(const ReadCsvParams &params)
{
    CsvForm form;
    form.text.encoding = params.encoding.toLatin1();
    form.text.fallback = currentACPName().toLatin1();
    form.text.findsSeparator = isAuto(params.separator);
    form.text.findsLineEnd = isAuto(params.lineEnd);
    csv::Dialect &dialect = form.text.dialect;
    dialect.separator = csvSeparator(params.separator).value_or(',');
    dialect.quote = params.quote.isEmpty() ? csv::Dialect::kNoQuote : params.quote[0].toLatin1();
    dialect.comment = params.comment.toStdString();
    dialect.skippedLines = params.skipRows;
    form.hasHeader = params.header;
    form.uniqueNames = params.uniqueNames;
    form.decimal = params.decimal[0].toLatin1();
    form.fillsRagged = params.ragged == u"fill"_s;
    form.types = trimmedParts(params.types);
    for (const QString &value : trimmedParts(params.nullValues)) {
        form.nullValues.push_back(value.toUtf8());
    }
    for (const QString &entry : params.dateFormat) {
        form.dateFormats.push_back(*dateFormatOf(entry));
    }
    return form;
}

} // namespace corvanta
