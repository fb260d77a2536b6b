#include "column_types.h"

#include "base/counted.h"
#include "corvanta/action_item.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/main_ui.h"
#include "visible_text.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

bool isText(FileFormat::Family family)
{
    return family == FileFormat::SeparatedText || family == FileFormat::Json ||
           family == FileFormat::Markup || family == FileFormat::Database;
}

bool isJson(const ActionParameters &action, FileFormat::Use use)
{
    return std::ranges::any_of(action.fileFormats(), [&](const FileFormat &format) {
        return format.use == use && format.family == FileFormat::Json;
    });
}

/// The options that compare values.
QStringList comparingOptions()
{
    return {u"--where"_s, u"--sort"_s};
}

/// Whether one of these options may name the column, quoted or not.
bool isNamed(const CommandLine &line, QString column)
{
    column.remove(u'"');
    const QStringList options = comparingOptions();
    return std::ranges::any_of(options, [&](const QString &option) {
        const QString texts = line.values.value(option).join(u' ').remove(u'"');
        return !texts.isEmpty() && texts.contains(column, Qt::CaseInsensitive);
    });
}

/// Whether the reader's files are texts, so that their columns have no types of their own.
bool readsTexts(const ActionParameters &reader)
{
    return std::ranges::any_of(reader.fileFormats(), [](const FileFormat &format) {
        return format.use == FileFormat::Read && isText(format.family);
    });
}

/// Whether the file may have more rows than a sample.
bool isLarge(const QString &fileName)
{
    constexpr qint64 kSmallFile = 10'000; // bytes; a row has at least one, and more are examined
    const QFileInfo file(fileName);
    return !file.isFile() || file.size() > kSmallFile;
}

/// A text, although the values before one are numbers, or all are, but one has too many digits.
bool isTextWithNumbers(const ColumnKind &kind)
{
    return !kind.exceptionPlace.isEmpty() && (isNumber(kind.kind) || isNumber(kind.before));
}

/// A text, although the values before one are dates or times.
bool isTextWithDates(const ColumnKind &kind)
{
    return kind.kind == ValueKind::Text &&
           (kind.before == ValueKind::Date || kind.before == ValueKind::DateTime ||
            kind.before == ValueKind::Time);
}

/// Say which columns are texts although they have values of a kind, and because of which value.
void noteTexts(const QString &fileName, const QVector<ColumnKind> &kinds,
               bool (*hasValues)(const ColumnKind &), const QString &values, const QString &remedy)
{
    const auto count = std::ranges::count_if(kinds, hasValues);
    if (count == 0) {
        return;
    }
    const ColumnKind &first = *std::ranges::find_if(kinds, hasValues);
    MainUI::addLog(
        MainUI::Info,
        u"%1 of '%2' %3 %4 but %5 text; the first is '%6', because of '%7' in %8%9"_s.arg(
            counted(count, u"column"_s), fileName, hasOrHave(count), values, isOrAre(count),
            first.column, visibleText(first.exception), first.exceptionPlace, remedy));
}

ValueKind kindOf(QChar letter)
{
    return letter == u'K'   ? ValueKind::Integer
           : letter == u'F' ? ValueKind::Decimal
                            : ValueKind::Text;
}

/// The kind of a column whose letter the user has given.
ColumnKind givenKind(const QString &column, QChar letter)
{
    return {column, kindOf(letter), letter.toLatin1()};
}

QVector<ColumnKind> noKinds()
{
    return {};
}

/// The columns with the letters of --types.
CommandResult<QVector<ColumnKind>> givenKinds(const ColumnTypes &types, const QString &fileName,
                                              QVector<ColumnKind> kinds)
{
    if (types.letters.size() != kinds.size()) {
        return badUsage(
            u"--types: %1 for the %2 of '%3'"_s.arg(counted(types.letters.size(), u"letter"_s),
                                                    counted(kinds.size(), u"column"_s), fileName));
    }
    for (qsizetype i = 0; i < kinds.size(); ++i) {
        kinds[i] = givenKind(kinds[i].column, types.letters[i]);
    }
    return kinds;
}

/// Examines a file. Nothing, after a warning, if that is impossible.
std::optional<QVector<ColumnKind>> examinedKinds(const QString &fileName, ActionParameters *reader,
                                                 ActionParameters::KindExtent extent)
{
    auto kinds = reader->columnKinds(extent);
    if (!kinds) {
        // A failure of the system may be over when the rows are read, and the output must not
        // depend on it.
        kinds = reader->columnKinds(extent);
    }
    // The run says why, unless the file can be read by then, or is a pipe. Only the run reports a
    // missing file.
    const bool exists = fileName == "-"_L1 || QFileInfo::exists(fileOfInput(fileName));
    if (!kinds && exists) {
        MainUI::addLog(
            MainUI::Warning,
            readsTexts(*reader)
                ? u"The columns of '%1' are texts: the file could not be examined"_s.arg(fileName)
                : u"Dates and booleans of '%1' are texts or numbers: the file could not "
                  "be examined"_s.arg(fileName));
    }
    return kinds;
}

/// The kinds of columns that have types of their own.
CommandResult<QVector<ColumnKind>> typedKinds(ColumnTypes::Rule rule, const QString &fileName,
                                              ActionParameters *reader,
                                              ActionParameters::KindExtent extent)
{
    if (rule == ColumnTypes::Rule::Letters) {
        return badUsage(u"--types: the columns of '%1' have types, and letters are only for files "
                        "of texts"_s.arg(fileName));
    }
    return rule == ColumnTypes::Rule::Auto
               ? examinedKinds(fileName, reader, extent).value_or(noKinds())
               : noKinds();
}

} // namespace

CommandResult<ColumnTypes> columnTypesOf(const CommandLine &line)
{
    const QString value = line.value(u"--types"_s, u"auto"_s);
    if (value == "auto"_L1 || value == "text"_L1) {
        return ColumnTypes{value == "auto"_L1 ? ColumnTypes::Rule::Auto : ColumnTypes::Rule::Text,
                           {}};
    }
    ColumnTypes types{ColumnTypes::Rule::Letters, {}};
    for (const QString &letter : value.split(u',')) {
        const QString trimmed = letter.trimmed().toUpper();
        if (trimmed != "K"_L1 && trimmed != "F"_L1 && trimmed != "U"_L1) {
            return badUsage(
                u"--types: '%1' is not auto, text, or one of the letters K (integer), F "
                "(decimal number) and U (text) for each column, such as K,F,U"_s.arg(value));
        }
        types.letters += trimmed;
    }
    return types;
}

CommandResult<QVector<ColumnKind>> columnKindsOf(const ColumnTypes &types, const QString &fileName,
                                                 ActionParameters *reader,
                                                 ActionParameters::KindExtent extent)
{
    using Rule = ColumnTypes::Rule;
    if (!readsTexts(*reader)) {
        return typedKinds(types.rule, fileName, reader, extent);
    }
    if (types.rule == Rule::Text) {
        return noKinds();
    }
    // Letters need only the names of the columns.
    const bool isGiven = types.rule == Rule::Letters;
    auto kinds =
        examinedKinds(fileName, reader, isGiven ? ActionParameters::KindExtent::Sample : extent);
    if (!kinds) {
        return noKinds();
    }
    return isGiven ? givenKinds(types, fileName, *std::move(kinds)) : *std::move(kinds);
}

bool hasScannedKinds(const CommandLine &line, const ActionItem &reader)
{
    const auto types = columnTypesOf(line);
    return types && types->rule == ColumnTypes::Rule::Auto &&
           readsTexts(dynamic_cast<const ActionParameters &>(reader));
}

void noteSample(const CommandLine &line, const QString &fileName, const ActionItem &reader)
{
    if (hasScannedKinds(line, reader) && isLarge(fileName)) {
        MainUI::addLog(MainUI::Info,
                       u"The types of the columns are those of the first rows of '%1' (--all "
                       "examines all rows)"_s.arg(fileName));
    }
}

QVector<ColumnKind> losslessKinds(QVector<ColumnKind> kinds)
{
    for (ColumnKind &kind : kinds) {
        kind.kind = kind.exception.isEmpty() ? kind.kind : ValueKind::Text;
    }
    return kinds;
}

bool copiesJson(const CommandLine &line, const ActionItem &reader, const ActionParameters &writer)
{
    const auto types = columnTypesOf(line);
    // Settings of the writer may say how numbers and missing values are written.
    return types && types->rule == ColumnTypes::Rule::Auto &&
           !line.values.contains(u"--writer"_s) &&
           isJson(dynamic_cast<const ActionParameters &>(reader), FileFormat::Read) &&
           isJson(writer, FileFormat::Write);
}

bool comparesValues(const CommandLine &line)
{
    const QStringList options = comparingOptions();
    return std::ranges::any_of(options,
                               [&](const QString &option) { return line.values.contains(option); });
}

QVector<ColumnKind> jsonKinds(const CommandLine &line, QVector<ColumnKind> kinds)
{
    constexpr char kJsonLetter = 'J'; // of readJSON
    for (ColumnKind &kind : kinds) {
        if (!isNamed(line, kind.column)) {
            kind = {.column = kind.column, .letter = kJsonLetter};
        }
    }
    return kinds;
}

void noteValuesAmongTexts(const QString &fileName, const QVector<ColumnKind> &kinds)
{
    noteTexts(fileName, kinds, isTextWithNumbers, u"numbers"_s,
              u" (--types with one letter for each column, such as K,F,U, reads numbers)"_s);
    noteTexts(fileName, kinds, isTextWithDates, u"dates or times"_s, QString());
}

/// Only columns that the reader itself cannot give as numbers.
QStringList castsFor(const QVector<ColumnKind> &kinds, ActionParameters *reader)
{
    // A text may have another form too: dBase has dates without separators.
    const bool hasTypes = std::any_of(kinds.begin(), kinds.end(), [](const ColumnKind &kind) {
        return kind.kind != ValueKind::Text || kind.letter != 'U';
    });
    if (!hasTypes || !readsTexts(*reader) || reader->readColumnsAs(kinds)) {
        return {};
    }
    QStringList casts;
    for (const ColumnKind &kind : kinds) {
        if (kind.letter != 'U') {
            casts << kind.column + u'=' + QLatin1Char(kind.letter);
        }
    }
    return casts;
}
