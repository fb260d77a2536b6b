// The texts of most messages are fixed. They have no common form: some end with a line feed.
#include "actions/write_sas/write_sas.h"

#include "base/counted.h"
#include "codecs/sas/data_set_writer.h"
#include "codecs/sas/variable_names.h"
#include "codecs/stat/date_text.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Whether SAS accepts the name without VALIDVARNAME=ANY.
bool isOrdinaryName(const QByteArray &name)
{
    return sas::validName(QString::fromUtf8(name), sas::kMaxNameBytes) == name;
}

/// Names are stored in UTF-8, in a field of fixed size.
bool isTooLong(const QString &name)
{
    return name.toUtf8().size() > sas::kMaxNameBytes;
}

} // namespace

ActionWriteSAS::ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteSasEntry, saved, parameters)
{
}

QString ActionWriteSAS::fileKind() const
{
    return u"SAS file"_s;
}

int ActionWriteSAS::maxVariables() const
{
    return sas::kMaxDataSetVariables;
}

QString ActionWriteSAS::message(WriteProblem problem, const QString &name) const
{
    switch (problem) {
    case WriteProblem::NoTestColumn:
        return u"ERROR writing to SAS File '%1': cannot find column '%2' to test\n"_s.arg(
            fileName(), name);
    case WriteProblem::NoColumn:
        return u"ERROR writing to SAS File '%1': cannot find column '%2' to write\n"_s.arg(
            fileName(), name);
    case WriteProblem::NoColumns:
        return u"ERROR: writing SAS file '%1': no columns to write?\n"_s.arg(fileName());
    case WriteProblem::CannotOpen:
    case WriteProblem::CannotWrite: // these three do not occur: see failWrite()
    case WriteProblem::BadFloatFormat:
    case WriteProblem::TooLarge:
        break;
    }
    return u"ERROR while opening SAS file '%1' for write?"_s.arg(fileName());
}

bool ActionWriteSAS::failUnknownWidth(const QString &column)
{
    return fail(u"ERROR: writing SAS file '%1': width of String column '%2' is unknown?"_s.arg(
                    fileName(), column),
                u"StringColDef declares no width; autoWidth='1' measures the texts"_s);
}

bool ActionWriteSAS::failWrite(const QString &text, const QString &reason)
{
    return fail(u"ERROR while writing SAS file '%1':%2"_s.arg(fileName(), text), reason);
}

void ActionWriteSAS::start()
{
    DataSetOutput::start();
    m_cutWarnings = 0;
}

/// longest * f1 + f2 bytes, within the limits of the format.
int ActionWriteSAS::measuredWidth(qsizetype longest) const
{
    const double width =
        std::ceil(static_cast<double>(longest) * m_params.f1 + static_cast<double>(m_params.f2));
    // Not std::clamp(), which keeps a NaN: a factor may be any double.
    return static_cast<int>(std::fmin(std::fmax(width, 1.0), double(sas::kMaxTextBytes)));
}

/// Warns of each text, up to a limit; the action may treat the first one as an error instead.
bool ActionWriteSAS::reportCutText(const QString &column, qsizetype bytes, int width,
                                   const QString &text)
{
    if (m_params.stringStorage == WideText::Abort) {
        return fail(
            u"ERROR: writing SAS file: the SAS column '%3' is too wide (%1>%2; Content is '%4')"_s
                .arg(QString::number(bytes), QString::number(width), column, text));
    }
    constexpr int kMaxWarnings = 50;
    if (++m_cutWarnings < kMaxWarnings) {
        warn(
            u"WARNING: writing SAS file: the SAS column '%3' is too wide (%1>%2) and has been truncated."_s
                .arg(QString::number(bytes), QString::number(width), column));
    } else if (m_cutWarnings == kMaxWarnings) {
        warn(
            u"WARNING: writing SAS file: the SAS column '%3' is too wide (%1>%2) and has been truncated. Some more warning(s) are not reported."_s
                .arg(QString::number(bytes), QString::number(width), column));
    }
    return true;
}

bool ActionWriteSAS::checkLengths(const QStringList &columns)
{
    const auto found = std::find_if(columns.begin(), columns.end(), isTooLong);
    return m_params.columnNameMode != VariableNames::Whole || found == columns.end() ||
           fail(u"ERROR: writing SAS file '%1': column's name '%2' is too long (>32 chars)?"_s.arg(
               fileName(), *found));
}

std::vector<QByteArray> ActionWriteSAS::chooseNames(const QStringList &columns)
{
    std::vector<QByteArray> names;
    for (const QString &column : columns) {
        // A saved graph may have any number here; unknown ones are the default.
        if (m_params.columnNameMode == VariableNames::Numbered) {
            names.push_back('C' + QByteArray::number(names.size() + 1));
        } else if (m_params.columnNameMode == VariableNames::Valid) {
            names.push_back(sas::validName(column, sas::kMaxNameBytes));
        } else {
            names.push_back(sas::cutUtf8(encoded(column, column), sas::kMaxNameBytes));
        }
    }
    return names;
}

/// Changes empty names, and those that are equal, most of them by having been cut.
void ActionWriteSAS::makeDifferent(const QStringList &columns, std::vector<QByteArray> *names)
{
    // In names of our own, SAS's rules apply; names of the user are kept as far as possible.
    const bool isValidMode = m_params.columnNameMode == VariableNames::Valid;
    const std::vector<size_t> changed = sas::makeUnique(
        *names, columns, isValidMode ? Qt::CaseInsensitive : Qt::CaseSensitive, sas::kMaxNameBytes);
    // Of valid names, warnChangedNames() lists all that differ from their columns.
    if (!changed.empty() && !isValidMode) {
        warn(
            u"Warning: writing SAS file '%1': %2 %6 changed, because names must be different and not empty; the first is column %3, '%4', which is now '%5'\n"_s
                .arg(fileName(), counted(std::ssize(changed), u"column name"_s),
                     QString::number(changed.front() + 1), columnName(changed.front()),
                     QString::fromUtf8((*names)[changed.front()]), isOrAre(std::ssize(changed))));
    }
}

/// SAS itself reads such names only with an option; other programs read them. Not a warning,
/// because the names are those that the parameters ask for.
void ActionWriteSAS::reportOddNames(const std::vector<QByteArray> &names)
{
    const auto isOdd = [](const QByteArray &name) { return !isOrdinaryName(name); };
    const auto first = std::find_if(names.begin(), names.end(), isOdd);
    if (first != names.end()) {
        const auto count = std::count_if(first, names.end(), isOdd);
        MainUI::addLog(
            MainUI::Info,
            u"Note: writing SAS file '%1': SAS needs the option VALIDVARNAME=ANY for %2 with other characters than letters of ASCII, digits and '_', with a digit at the start, or reserved; the first is '%3'. Use columnNameMode='3' for names without them\n"_s
                .arg(fileName(), counted(count, u"name"_s), QString::fromUtf8(*first)));
    }
}

/// In this order: names are made, then made different, then judged.
bool ActionWriteSAS::describe(const QStringList &names, std::vector<sas::Variable> &variables)
{
    if (!checkLengths(names)) {
        return false;
    }
    std::vector<QByteArray> chosen = chooseNames(names);
    makeDifferent(names, &chosen);
    reportOddNames(chosen);
    for (size_t i = 0; i < variables.size(); ++i) {
        variables[i].name = chosen[i];
        const QString &column = names[static_cast<qsizetype>(i)];
        variables[i].label = encodedLabel(labelOf(column), column);
        variables[i].format = formatOf(column);
    }
    if (m_params.columnNameMode == VariableNames::Valid) {
        warnChangedNames(names, variables);
    }
    return true;
}

/// Where the name of the variable is made up, the label keeps that of the column.
QString ActionWriteSAS::labelOf(const QString &column) const
{
    const VariableDefinition *const defined = definitionOf(column);
    if (defined != nullptr && !defined->label.isEmpty()) {
        return defined->label;
    }
    const bool hasLabels = m_params.columnNameMode == VariableNames::Numbered ||
                           m_params.columnNameMode == VariableNames::Valid;
    return hasLabels ? column : QString();
}

/// The library stores the whole text as the name. Programs recognise dates only by the exact name,
/// so these formats lose their width.
QByteArray ActionWriteSAS::formatOf(const QString &column) const
{
    const VariableDefinition *const defined = definitionOf(column);
    const QString format = defined != nullptr ? defined->format : QString();
    const bool isDate = stat::dateKindOf(stat::Format::Sas, format) != stat::DateKind::None;
    return (isDate ? stat::formatName(format) : format).toUtf8();
}

std::unique_ptr<sas::TableWriter> ActionWriteSAS::makeWriter(ByteSink &sink,
                                                             std::vector<sas::Variable> variables)
{
    return std::make_unique<sas::DataSetWriter>(sink, std::move(variables));
}

} // namespace corvanta
