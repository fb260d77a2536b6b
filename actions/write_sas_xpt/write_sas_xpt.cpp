// Names are chosen before labels, because a label keeps the name that had to change; both before
// the widths, which DataSetOutput finds. What happens to values is known only after the last row.
#include "actions/write_sas_xpt/write_sas_xpt.h"

#include "base/counted.h"
#include "codecs/sas/variable_names.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionWriteSASXPT::ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteSasXptEntry, saved, parameters)
{
}

/// Mistakes that a run would report, too, but only after its readers have started.
QVector<ParameterProblem> ActionWriteSASXPT::problems() const
{
    QVector<ParameterProblem> found;
    if (!sas::TextEncoder::named(m_params.encoding.toUtf8())) {
        found.append(
            {u"encoding"_s,
             QCoreApplication::translate(
                 "Problems", "the encoding '%1' is unknown, or its characters have several bytes")
                 .arg(m_params.encoding)});
    }
    for (const VariableDefinition &defined : m_params.variables) {
        if (!defined.format.isEmpty() && !sas::DisplayFormat::parse(defined.format.toUtf8())) {
            found.append({QString::fromLatin1(kVariableDefinitions),
                          QCoreApplication::translate("Problems",
                                                      "'%1' is not a format of SAS, such as DATE9.")
                              .arg(defined.format)});
        }
    }
    return found;
}

QString ActionWriteSASXPT::fileKind() const
{
    return u"SAS transport file"_s;
}

/// Version 8 has longer names and labels, but fewer programs read it.
sas::TransportVersion ActionWriteSASXPT::version() const
{
    return m_params.version8 ? sas::TransportVersion::V8 : sas::TransportVersion::V5;
}

QString ActionWriteSASXPT::message(WriteProblem problem, const QString &name) const
{
    switch (problem) {
    case WriteProblem::NoTestColumn:
        return u"ERROR writing to SAS transport file '%1': cannot find column '%2' to test\n"_s.arg(
            fileName(), name);
    case WriteProblem::NoColumn:
        return u"ERROR writing to SAS transport file '%1': cannot find column '%2' to write\n"_s
            .arg(fileName(), name);
    case WriteProblem::NoColumns:
        return u"ERROR: writing SAS transport file '%1': no columns to write?\n"_s.arg(fileName());
    case WriteProblem::CannotOpen:
    case WriteProblem::CannotWrite: // these three do not occur: see failWrite()
    case WriteProblem::BadFloatFormat:
    case WriteProblem::TooLarge:
        break;
    }
    return u"ERROR while opening SAS transport file '%1' for write?\n"_s.arg(fileName());
}

bool ActionWriteSASXPT::failUnknownWidth(const QString &column)
{
    return fail(
        u"ERROR: writing SAS transport file '%1': width of String column '%2' is unknown? Declare it (StringColDef) or use autoWidth='1'\n"_s
            .arg(fileName(), column));
}

bool ActionWriteSASXPT::failWrite(const QString &text, const QString &reason)
{
    return fail(u"ERROR while writing SAS transport file '%1': %2\n"_s.arg(fileName(), text),
                reason);
}

/// The file does not name its encoding, so that a reader must know it.
bool ActionWriteSASXPT::chooseEncoding()
{
    const auto named = sas::TextEncoder::named(m_params.encoding.toUtf8());
    if (!named) {
        return fail(
            u"ERROR: writing SAS transport file '%1': the encoding '%2' is unknown, or its characters have several bytes. Use UTF-8 or an encoding such as WINDOWS-1252\n"_s
                .arg(fileName(), m_params.encoding));
    }
    encoder() = *named;
    return true;
}

bool ActionWriteSASXPT::reportCutText(const QString &column, qsizetype bytes, int width,
                                      const QString &text)
{
    // Cut texts are counted, and reported at the end.
    return m_params.stringStorage != WideText::Abort ||
           fail(
               u"ERROR: writing SAS transport file '%1': a text of the column '%2' is too wide (%3>%4; content is '%5')\n"_s
                   .arg(fileName(), column, QString::number(bytes), QString::number(width), text));
}

/// The table has the name of the file, as SAS accepts it.
QByteArray ActionWriteSASXPT::tableName() const
{
    const QByteArray name =
        sas::validName(QFileInfo(fileName()).completeBaseName(), limits().name).toUpper();
    return name.isEmpty() ? "DATASET" : name;
}

/// Changed names are listed in one warning, with the names that they had.
void ActionWriteSASXPT::setNames(const QStringList &columns, std::vector<sas::Variable> &variables)
{
    std::vector<QByteArray> names;
    for (const QString &column : columns) {
        names.push_back(sas::validName(column, limits().name));
    }
    // Equal names are always changed: a reader would show one of them only.
    sas::makeUnique(names, columns, Qt::CaseInsensitive, limits().name);
    for (size_t i = 0; i < names.size(); ++i) {
        variables[i].name = names[i];
    }
    warnChangedNames(columns, variables);
}

QString ActionWriteSASXPT::labelOf(const QString &column, const QByteArray &name) const
{
    const VariableDefinition *const defined = definitionOf(column);
    // A name that was changed is kept as the label.
    const QString whole = name != column.toUtf8() ? column : QString();
    return defined != nullptr && !defined->label.isEmpty() ? defined->label : whole;
}

void ActionWriteSASXPT::setLabels(const QStringList &columns, std::vector<sas::Variable> &variables)
{
    for (size_t i = 0; i < variables.size(); ++i) {
        const QString &column = columns[static_cast<qsizetype>(i)];
        variables[i].label = encodedLabel(labelOf(column, variables[i].name), column);
    }
}

/// Sets the width and the format of a variable.
bool ActionWriteSASXPT::define(const QString &column, sas::Variable &variable)
{
    variable.width = m_params.numberWidth;
    const VariableDefinition *const defined = definitionOf(column);
    if (defined == nullptr) {
        return true;
    }
    // For a column of texts, DataSetOutput replaces the width.
    if (defined->width != 0) {
        variable.width = std::max(defined->width, sas::kMinNumberBytes);
    }
    variable.format = defined->format.toUtf8();
    return variable.format.isEmpty() || sas::DisplayFormat::parse(variable.format) ||
           fail(
               u"ERROR: writing SAS transport file '%1': the format '%2' of the column '%3' is not one of SAS, such as DATE9. or 8.2, with a name of at most 8 characters\n"_s
                   .arg(fileName(), defined->format, column));
}

bool ActionWriteSASXPT::describe(const QStringList &names, std::vector<sas::Variable> &variables)
{
    setNames(names, variables);
    setLabels(names, variables);
    for (size_t i = 0; i < variables.size(); ++i) {
        if (!define(names[static_cast<qsizetype>(i)], variables[i])) {
            return false;
        }
    }
    return true;
}

std::unique_ptr<sas::TableWriter>
ActionWriteSASXPT::makeWriter(ByteSink &sink, std::vector<sas::Variable> variables)
{
    return std::make_unique<sas::TransportWriter>(sink, version(), tableName(),
                                                  std::move(variables));
}

/// Version 5 stores no number of rows, and fills the last record up with blanks.
void ActionWriteSASXPT::warnBlankRows(qint64 count)
{
    if (count > 0) {
        warn(
            u"Warning: writing SAS transport file '%1': only missing texts are in the last %2. Programs that do not know the number of rows treat them as padding and ignore them. Write a column of numbers, too; SAS reads them with version8='1'\n"_s
                .arg(fileName(), counted(count, u"row"_s)));
    }
}

void ActionWriteSASXPT::warnRounded(const QString &column, const sas::RowCount &rounded)
{
    warn(
        u"Warning: writing SAS transport file '%1': %2 of the column '%3' lost digits, for lack of bytes or below 5.4e-79; the first is in row %4 of the file\n"_s
            .arg(fileName(), counted(rounded.count, u"number"_s), column,
                 QString::number(rounded.firstRow)));
}

void ActionWriteSASXPT::warnTooLarge(const QString &column, const sas::RowCount &tooLarge)
{
    warn(
        u"Warning: writing SAS transport file '%1': %2 of the column '%3' became missing (infinite, or above 7.2e75); the first is in row %4 of the file\n"_s
            .arg(fileName(), counted(tooLarge.count, u"number"_s), column,
                 QString::number(tooLarge.firstRow)));
}

void ActionWriteSASXPT::reportRows(const sas::TableWriter &writer)
{
    // Values are lost in the file, not in the input: rows that were filtered out are not counted.
    const auto &transport = static_cast<const sas::TransportWriter &>(writer); // of makeWriter()
    for (size_t i = 0; i < transport.reports().size(); ++i) {
        const auto &[rounded, tooLarge] = transport.reports()[i];
        if (rounded.count > 0) {
            warnRounded(columnName(i), rounded);
        }
        if (tooLarge.count > 0) {
            warnTooLarge(columnName(i), tooLarge);
        }
    }
    warnBlankRows(transport.blankRowsAtEnd());
}

} // namespace corvanta
