#include "actions/write_xml/write_xml.h"

#include "codecs/compose/xml_levels.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kMaxIndent = 1000;

} // namespace

ActionWriteXML::ActionWriteXML(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteXmlEntry, saved, parameters)
{
}

QString ActionWriteXML::message(WriteProblem problem, const QString &name) const
{
    const QString &file = fileName();
    switch (problem) {
    case WriteProblem::NoTestColumn:
        return u"\nERROR writing to XML file '%1': cannot find column '%2' to test\n"_s.arg(file,
                                                                                            name);
    case WriteProblem::NoColumn:
        return u"\nERROR writing to XML file '%1': cannot find column '%2' to write\n"_s.arg(file,
                                                                                             name);
    case WriteProblem::NoColumns:
        return u"\nERROR writing to XML file '%1': no column to write?\n"_s.arg(file);
    case WriteProblem::BadFloatFormat:
        return u"\nERROR writing to XML file '%1': '%2' is not a format of a floating-point number\n"_s
            .arg(file, name);
    case WriteProblem::CannotOpen:
        return u"\nERROR: cannot open XML file '%1' for write\n"_s.arg(file);
    case WriteProblem::CannotWrite:
        return u"\nERROR: cannot write to XML file '%1'\n"_s.arg(file);
    case WriteProblem::TooLarge:
        break;
    }
    return u"\nERROR writing to XML file '%1': output buffer too small\n"_s.arg(file);
}

QString ActionWriteXML::levelMessage(compose::LevelProblem problem, const QString &name,
                                     const QString &level) const
{
    const QString &file = fileName();
    switch (problem) {
    case compose::LevelProblem::NoPartitionColumn:
        return u"\nERROR writing to XML file '%1': cannot find partitioning column '%2' in level '%3'\n"_s
            .arg(file, name, level);
    case compose::LevelProblem::NoColumn:
        return message(WriteProblem::NoColumn, name);
    case compose::LevelProblem::NoLevel:
        return u"\nERROR writing to XML file '%1': cannot find the level named '%2'\n"_s.arg(file,
                                                                                             name);
    case compose::LevelProblem::CyclicLevel:
        return u"\nERROR writing to XML file '%1': the level '%2' is a sub-level of itself\n"_s.arg(
            file, name);
    case compose::LevelProblem::NoDictionary: // XML has no such item
    case compose::LevelProblem::NoColumnListed:
        break;
    }
    return message(WriteProblem::NoColumns, name);
}

std::vector<WriteLevel> ActionWriteXML::declaredLevels() const
{
    return m_params.levels.empty()
               ? compose::defaultXmlLevels(m_params.writeAllColumns, m_params.toWrite)
               : m_params.levels;
}

compose::LevelCompiler::Levels ActionWriteXML::compileLevels(const std::vector<WriteLevel> &levels,
                                                             const RowView &columns) const
{
    const int indent = qBound(0, expandString(m_params.indentStart).toInt(), kMaxIndent);
    return compose::compileXmlLevels(
        levels, columns,
        {m_params.humanReadable ? std::optional(indent) : std::nullopt, m_params.wellFormed});
}

compose::ValueRules ActionWriteXML::valueRules() const
{
    compose::ValueRules rules = commonRules(u"", u"");
    rules.decimalComma = m_params.useComma;
    return rules;
}

FileFrame ActionWriteXML::frame() const
{
    const bool isWide =
        m_params.charMode == CharMode::Utf16WithMark || m_params.charMode == CharMode::Utf16;
    const bool hasMark =
        m_params.charMode == CharMode::Utf8WithMark || m_params.charMode == CharMode::Utf16WithMark;
    std::u16string head = hasMark ? u"\uFEFF" : u"";
    head += isWide ? u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
                   : u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const compose::Encoding encoding =
        isWide ? compose::Encoding::Utf16Le : compose::Encoding::Utf8;
    return {encoding, compose::encode(head, encoding), m_params.prefix,
            m_params.humanReadable ? u"\n"_s : QString(), m_params.suffix};
}

} // namespace corvanta
