#include "actions/write_xml/write_xml.h"

#include "codecs/compose/xml_levels.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Limits what one wrong number can add to every element.
constexpr int kMaxIndent = 1000; // spaces

} // namespace

ActionWriteXML::ActionWriteXML(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteXmlEntry, saved, parameters)
{
}

LevelWriterTexts ActionWriteXML::texts() const
{
    return {u"\n"_s, u"XML"_s, u"no column to write?\n"_s};
}

std::vector<WriteLevel> ActionWriteXML::declaredLevels() const
{
    // Without levels, the structure follows from the chosen columns.
    return m_params.levels.empty()
               ? compose::defaultXmlLevels(m_params.writeAllColumns, m_params.toWrite)
               : m_params.levels;
}

compose::LevelCompiler::Levels ActionWriteXML::compileLevels(const std::vector<WriteLevel> &levels,
                                                             const RowView &columns) const
{
    // Expanded here, once per run. A text that is not a number gives 0.
    const int indent = qBound(0, expandString(m_params.indentStart).toInt(), kMaxIndent);
    return compose::compileXmlLevels(
        levels, columns,
        {m_params.humanReadable ? std::optional(indent) : std::nullopt, m_params.wellFormed});
}

compose::ValueRules ActionWriteXML::valueRules() const
{
    // XML has no null: a missing value is an empty one.
    compose::ValueRules rules = commonRules(u"", u"");
    rules.decimalComma = m_params.useComma;
    return rules;
}

FileFrame ActionWriteXML::frame() const
{
    // Any other number means UTF-8 without a mark. UTF-16 is little-endian, also without a mark.
    const bool isWide =
        m_params.charMode == CharMode::Utf16WithMark || m_params.charMode == CharMode::Utf16;
    const bool hasMark =
        m_params.charMode == CharMode::Utf8WithMark || m_params.charMode == CharMode::Utf16WithMark;
    // A file that is appended to already has a declaration; LevelWriter then leaves out the head.
    std::u16string head = hasMark ? u"\uFEFF" : u"";
    head += isWide ? u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
                   : u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const compose::Encoding encoding =
        isWide ? compose::Encoding::Utf16Le : compose::Encoding::Utf8;
    return {encoding,
            m_params.wellFormed,
            compose::encode(head, encoding),
            m_params.prefix,
            m_params.humanReadable ? u"\n"_s : QString(),
            m_params.suffix};
}

} // namespace corvanta
