#include "writers/xml_levels.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using compose::FixedText;
using Columns = std::vector<ComposeOperation::Column>;
using Compiled = LevelCompiler::Compiled;
using Kind = ComposeOperation::Kind;
using TextForm = ComposeOperation::TextForm;

/// The numbers of the item types in saved graphs.
enum ItemType {
    Text = 0,
    Attributes = 1,
    SomeAttributes = 2,
    Subtags = 3,
    SomeSubtags = 4,
    InQuotes = 5,
    InTag = 6,
    AsIs = 7,
    SubLevel = 8
};

constexpr int kIndentStep = 2;

FixedText fixed(const QString &text)
{
    return FixedText(text.toStdU16String());
}

class XmlItems
{
public:
    XmlItems(const LevelCompiler &compiler, const std::vector<WriteLevel> &levels,
             std::optional<int> indent)
        : m_compiler(compiler)
        , m_levels(levels)
        , m_depths(depthsOf(levels, SubLevel))
        , m_indent(indent)
    {
    }

    Compiled compile(size_t level, size_t index) const
    {
        const WriteItem &item = m_levels[level].items[index];
        switch (item.type) {
        case Text:
            return ComposeOperation{Kind::Text, TextForm::XmlText, fixed(item.text)};
        case Attributes:
            return attributes(m_compiler.findAll(), QString());
        case Subtags:
            return subtags(m_compiler.findAll(), level);
        case SomeAttributes:
        case SomeSubtags:
            return someColumns(item, level);
        case InQuotes:
        case InTag:
        case AsIs:
            return oneColumn(item);
        case SubLevel:
            return m_compiler.callOf(item.calledLevel);
        default: // Kept as required: items of an unknown type write nothing.
            return ComposeOperation{};
        }
    }

    /// A line feed and the blanks in front of an element of `level`, or of what is `deeper` in it.
    QString lineBreak(size_t level, int deeper) const
    {
        return m_indent
                   ? u'\n' + QString((m_depths[level] + deeper) * kIndentStep + *m_indent, u' ')
                   : QString();
    }

private:
    Compiled attributes(Columns columns, const QString &prefix) const
    {
        for (ComposeOperation::Column &column : columns) {
            const QString name = m_compiler.columns().colName(column.input);
            const bool isCut = !prefix.isEmpty() && name.startsWith(prefix);
            column.before = fixed(u' ' + (isCut ? name.mid(prefix.size()) : name) + u"=\""_s);
            column.after = FixedText(u"\"");
        }
        return ComposeOperation{Kind::Values, TextForm::XmlAttribute, {}, {}, std::move(columns)};
    }

    Compiled subtags(Columns columns, size_t level) const
    {
        for (ComposeOperation::Column &column : columns) {
            const QString name = m_compiler.columns().colName(column.input);
            column.before = fixed(lineBreak(level, 1) + u'<' + name + u'>');
            column.after = fixed(u"</"_s + name + u'>');
        }
        return ComposeOperation{
            Kind::Values, TextForm::XmlText, {}, fixed(lineBreak(level, 0)), std::move(columns)};
    }

    Compiled someColumns(const WriteItem &item, size_t level) const
    {
        auto columns = m_compiler.find(item.columns);
        if (!columns) {
            return columns.fault();
        }
        return item.type == SomeAttributes ? attributes(*std::move(columns), item.p1)
                                           : subtags(*std::move(columns), level);
    }

    Compiled oneColumn(const WriteItem &item) const
    {
        if (item.columns.isEmpty()) {
            return Fault{WriteProblem::NoColumnListed};
        }
        auto columns = m_compiler.find(item.columns.mid(0, 1));
        if (!columns) {
            return columns.fault();
        }
        if (item.type == AsIs) {
            return ComposeOperation{Kind::RawValue, TextForm::XmlText, {}, {}, *std::move(columns)};
        }
        if (item.type == InTag) {
            return ComposeOperation{Kind::Values, TextForm::XmlText, {}, {}, *std::move(columns)};
        }
        return ComposeOperation{
            Kind::QuotedValue, TextForm::XmlAttribute, {}, {}, *std::move(columns)};
    }

    const LevelCompiler &m_compiler;
    const std::vector<WriteLevel> &m_levels;
    std::vector<int> m_depths;
    std::optional<int> m_indent;
};

} // namespace

LevelCompiler::Levels compileXmlLevels(const std::vector<WriteLevel> &levels, const OneRow &columns,
                                       std::optional<int> indent)
{
    const LevelCompiler compiler(levels, columns);
    const XmlItems items(compiler, levels, indent);
    auto compiled =
        compiler.compile([&](size_t level, size_t item) { return items.compile(level, item); });
    for (size_t i = 0; compiled && i < levels.size(); ++i) {
        (*compiled)[i].lineBreak = fixed(items.lineBreak(i, 0));
    }
    return compiled;
}

std::vector<WriteLevel> defaultXmlLevels(bool writeAllColumns, const QStringList &toWrite)
{
    WriteLevel level;
    level.commaSeparated = false;
    level.items.push_back({Text, u"<R "_s, {}, {}, {}});
    level.items.push_back({writeAllColumns ? Attributes : SomeAttributes, {}, {}, {}, toWrite});
    level.items.push_back({Text, u"/>"_s, {}, {}, {}});
    return {level};
}

} // namespace corvanta
