#include "actions/write_json/write_json.h"

#include "actions/shared/params/type_letters.h"
#include "actions/shared/split_name.h"
#include "base/nearest_name.h"
#include "base/occurrences.h"
#include "codecs/compose/json_levels.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionWriteJSON::ActionWriteJSON(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteJsonEntry, saved, parameters)
{
}

LevelWriterTexts ActionWriteJSON::texts() const
{
    return {{}, u"JSON"_s, u"no pre-formatedd column to write?"_s};
}

std::vector<WriteLevel> ActionWriteJSON::declaredLevels() const
{
    // Without levels, each row is one object with the chosen columns as its members.
    return m_params.levels.empty()
               ? compose::defaultJsonLevels(m_params.writeAllColumns, m_params.toWrite)
               : m_params.levels;
}

compose::LevelCompiler::Levels ActionWriteJSON::compileLevels(const std::vector<WriteLevel> &levels,
                                                              const RowView &columns) const
{
    // Escapes for all control characters include the one for line feeds.
    using Form = compose::ComposeOperation::TextForm;
    return compose::compileJsonLevels(levels, columns,
                                      m_params.escapeControls ? Form::JsonStrict
                                      : m_params.replaceLF    ? Form::JsonStringWithLineFeed
                                                              : Form::JsonString,
                                      {m_params.bareColumns, m_params.jsonColumns});
}

compose::ValueRules ActionWriteJSON::valueRules() const
{
    // An empty text in place of a missing one is written with its quotes.
    compose::ValueRules rules = commonRules(u"null", u"\"\"");
    rules.specialBool = m_params.specialBool;
    return rules;
}

FileFrame ActionWriteJSON::frame() const
{
    // No head: JSON is UTF-8 without a byte-order mark.
    FileFrame frame;
    frame.prefix = m_params.prefix;
    frame.suffix = m_params.suffix;
    return frame;
}

void ActionWriteJSON::start()
{
    // The columns of this run are not known yet.
    m_splitColumn = -1;
    LevelWriter::start();
}

QVector<ParameterProblem> ActionWriteJSON::problems() const
{
    QVector<ParameterProblem> problems = LevelWriter::problems();
    if (problems.isEmpty() && !compose::printsJsonNumber(m_params.floatToString)) {
        problems.append(
            {QString::fromLatin1(shared::kFloatToString),
             QCoreApplication::translate("Problems", "'%1' prints numbers that JSON does not have")
                 .arg(m_params.floatToString),
             ParameterProblem::Severity::Warning});
    }
    return problems;
}

/// Kept for saved graphs: such numbers are written, unlike in workbooks.
void ActionWriteJSON::warnNumbers(const OneRow &columns)
{
    if (compose::printsJsonNumber(m_params.floatToString)) {
        return;
    }
    for (int i = 0; i < columns.numberOfColumns(); ++i) {
        if (columns.getMetaType(i).type() == MetaInfo::Float) {
            warn(
                u"Warning: writing to JSON file '%1': the format '%2' prints numbers that JSON does not have, for example in column '%3'\n"_s
                    .arg(fileName(), m_params.floatToString, columns.colName(i)));
            return;
        }
    }
}

bool ActionWriteJSON::prepareColumns(const OneRow &columns)
{
    warnNumbers(columns);
    const QString target = u"to JSON file"_s;
    warnUnknown(target, kBare, m_params.bareColumns, columns);
    warnUnknown(target, kJsonTexts, m_params.jsonColumns, columns);
    if (!m_params.splitFile) {
        return true;
    }
    m_splitColumn = columns.getIndexOfColumn(m_params.splitCol);
    if (m_splitColumn < 0) {
        return fail(
            u"ERROR writing to multiple JSON files: cannot find column '%1' for split."_s.arg(
                m_params.splitCol),
            missingColumnReason(m_params.splitCol, columns.schema().names));
    }
    // The first row names the first file, even if it is not selected.
    m_splitValue = columns.textView(m_splitColumn).toString();
    // Rows of one value that are not next to each other are written to separate files of one name.
    const QVector<SortInfos> &sortedOn = columns.sortInfos();
    if (sortedOn.isEmpty() || sortedOn.first().column != m_params.splitCol) {
        warnUnsorted();
    }
    return true;
}

/// Kept for saved graphs: a warning at the level of errors, after which the run continues.
void ActionWriteJSON::warnUnsorted()
{
    warn(
        u"Warning writing to multiple JSON files: the input table is not sorted on the column '%1'. This may have unexpected consequences."_s
            .arg(m_params.splitCol),
        {}, MainUI::Error);
}

bool ActionWriteJSON::prepareRow(const OneRow &row)
{
    if (m_splitColumn < 0 || row.textView(m_splitColumn) == m_splitValue) {
        return true;
    }
    // The next text opens a file with the new value in its name.
    if (!endFile()) {
        return false;
    }
    m_splitValue = row.textView(m_splitColumn).toString();
    return true;
}

QString ActionWriteJSON::targetName() const
{
    if (m_splitColumn < 0) {
        return fileName();
    }
    // The part is safe in file names: a value cannot lead to another folder.
    return splitName(fileNamePart(m_splitValue));
}

QString ActionWriteJSON::splitName(const QString &part) const
{
    return m_params.advancedNaming
               ? expandOutputFile(m_params.fileName, part)
               : withPartBeforeExtension(expandOutputFile(m_params.fileName, QString()), part);
}

/// Texts of other columns keep their quotes, also those that look like booleans.
void ActionWriteJSON::setColumnKinds(const QVector<ColumnKind> &columns)
{
    m_params.specialBool = m_params.specialBool && columns.isEmpty();
    for (const ColumnKind &column : columns) {
        const bool isNumber =
            column.kind == ValueKind::Integer || column.kind == ValueKind::Decimal;
        // Numbers that are not texts have no quotes anyway.
        if (column.kind == ValueKind::Boolean || (isNumber && column.letter == 'U')) {
            m_params.bareColumns << column.column;
        }
        if (column.letter == kJsonLetter) {
            m_params.jsonColumns << column.column;
        }
    }
}

QVector<TargetUse> ActionWriteJSON::targets() const
{
    QVector<TargetUse> uses = LevelWriter::targets();
    for (TargetUse &use : uses) {
        use.isPattern = m_params.splitFile;
        use.name = m_params.splitFile ? splitName(u"*"_s) : use.name;
    }
    return uses;
}

} // namespace corvanta
