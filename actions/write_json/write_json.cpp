#include "actions/write_json/write_json.h"

#include "actions/shared/split_name.h"
#include "codecs/compose/json_levels.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionWriteJSON::ActionWriteJSON(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteJsonEntry, saved, parameters)
{
}

QString ActionWriteJSON::message(WriteProblem problem, const QString &name) const
{
    const QString &file = fileName();
    switch (problem) {
    case WriteProblem::NoTestColumn:
        return u"ERROR writing to JSON file '%1': cannot find column '%2' to test\n"_s.arg(file,
                                                                                           name);
    case WriteProblem::NoColumn:
        return u"ERROR writing to JSON file '%1': cannot find column '%2' to write\n"_s.arg(file,
                                                                                            name);
    case WriteProblem::NoColumns:
        return u"ERROR writing to JSON file '%1': no pre-formatedd column to write?"_s.arg(file);
    case WriteProblem::BadFloatFormat:
        return u"ERROR writing to JSON file '%1': '%2' is not a format of a floating-point number\n"_s
            .arg(file, name);
    case WriteProblem::CannotOpen:
        return u"ERROR: cannot open JSON file '%1' for write\n"_s.arg(file);
    case WriteProblem::CannotWrite:
        return u"ERROR: cannot write to JSON file '%1'\n"_s.arg(file);
    case WriteProblem::TooLarge:
        break;
    }
    return u"ERROR writing to JSON file '%1': output buffer too small\n"_s.arg(file);
}

QString ActionWriteJSON::levelMessage(compose::LevelProblem problem, const QString &name,
                                      const QString &level) const
{
    const QString &file = fileName();
    switch (problem) {
    case compose::LevelProblem::NoPartitionColumn:
        return u"ERROR writing to JSON file '%1': cannot find partitioning column '%2' in level '%3'\n"_s
            .arg(file, name, level);
    case compose::LevelProblem::NoColumn:
        return message(WriteProblem::NoColumn, name);
    case compose::LevelProblem::NoLevel:
        return u"ERROR writing to JSON file '%1': cannot find the level named '%2'\n"_s.arg(file,
                                                                                            name);
    case compose::LevelProblem::CyclicLevel:
        return u"ERROR writing to JSON file '%1': the level '%2' is a sub-level of itself\n"_s.arg(
            file, name);
    case compose::LevelProblem::NoDictionary:
        return u"ERROR writing to JSON file '%1': previous Item is not a Dictionary\n"_s.arg(file);
    case compose::LevelProblem::NoColumnListed:
        break;
    }
    return message(WriteProblem::NoColumns, name);
}

std::vector<WriteLevel> ActionWriteJSON::declaredLevels() const
{
    return m_params.levels.empty()
               ? compose::defaultJsonLevels(m_params.writeAllColumns, m_params.toWrite)
               : m_params.levels;
}

compose::LevelCompiler::Levels ActionWriteJSON::compileLevels(const std::vector<WriteLevel> &levels,
                                                              const RowView &columns) const
{
    using Form = compose::ComposeOperation::TextForm;
    return compose::compileJsonLevels(levels, columns,
                                      m_params.escapeControls ? Form::JsonStrict
                                      : m_params.replaceLF    ? Form::JsonStringWithLineFeed
                                                              : Form::JsonString);
}

compose::ValueRules ActionWriteJSON::valueRules() const
{
    compose::ValueRules rules = commonRules(u"null", u"\"\"");
    rules.specialBool = m_params.specialBool;
    return rules;
}

FileFrame ActionWriteJSON::frame() const
{
    FileFrame frame;
    frame.prefix = m_params.prefix;
    frame.suffix = m_params.suffix;
    return frame;
}

void ActionWriteJSON::start()
{
    m_splitColumn = -1;
    LevelWriter::start();
}

bool ActionWriteJSON::prepareColumns(const OneRow &columns)
{
    if (!m_params.splitFile) {
        return true;
    }
    m_splitColumn = columns.getIndexOfColumn(m_params.splitCol);
    if (m_splitColumn < 0) {
        return fail(
            u"ERROR writing to multiple JSON files: cannot find column '%1' for split."_s.arg(
                m_params.splitCol));
    }
    // The first row names the first file, even if it is not selected.
    m_splitValue = columns.textView(m_splitColumn).toString();
    const QVector<SortInfos> &sortedOn = columns.sortInfos();
    if (sortedOn.isEmpty() || sortedOn.first().column != m_params.splitCol) {
        warnUnsorted();
    }
    return true;
}

/// Kept for saved graphs: a warning at the level of errors, after which the run continues.
void ActionWriteJSON::warnUnsorted()
{
    MainUI::addLog(
        MainUI::Error,
        u"Warning writing to multiple JSON files: the input table is not sorted on the column '%1'. This may have unexpected consequences."_s
            .arg(m_params.splitCol));
    m_warningFlag = 1;
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
    const QString part = fileNamePart(m_splitValue);
    return m_params.advancedNaming ? expandOutputFile(m_params.fileName, part)
                                   : withPartBeforeExtension(fileName(), part);
}

} // namespace corvanta
