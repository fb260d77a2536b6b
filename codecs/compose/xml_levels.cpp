// The pieces that items become; "a" and "b" are columns:
//
//     attributes         a="1" b="text"       each with a space before it
//     subtags            <a>1</a><b>text</b>
//     in quotes          "1"
//     in a tag           1
//     sub-level          the elements of another level, for the rows of a partition
//     text, as-is        unchanged
//
// Tags of elements come from text items. Syntax: XML 1.0 (Fifth Edition).
#include "codecs/compose/xml_levels.h"

#include <set>

using namespace Qt::StringLiterals;

namespace corvanta::compose {

namespace {

using Columns = std::vector<ComposeOperation::Column>;
using Compiled = LevelCompiler::Compiled;
using Kind = ComposeOperation::Kind;
using TextForm = ComposeOperation::TextForm;

constexpr int kIndentStep = 2;

FixedText fixed(const QString &text)
{
    return FixedText(text.toStdU16String());
}

/// Whether a name may begin with `c` for XML parsers of every edition.
bool beginsName(QChar c)
{
    return c == u'_' || (c < u'\x80' ? c.isLetter() : c.isLetter() && !c.isSurrogate());
}

/// The name with "_" for characters that XML names cannot hold, and for colons, whose prefix would
/// have to be declared.
QString validName(const QString &name)
{
    QString valid;
    for (const QChar c : name) {
        const bool fits = beginsName(c) || c == u'-' || c == u'.' || (c >= u'0' && c <= u'9');
        valid += fits ? c : u'_';
    }
    return valid.isEmpty() || !beginsName(valid[0]) ? u'_' + valid : valid;
}

/// Names for the columns of one item.
class ItemNames
{
public:
    explicit ItemNames(bool wellFormed)
        : m_wellFormed(wellFormed)
    {
    }

    /// The name for `column`; with wellFormed a valid one, different from those before.
    QString next(const QString &name, ComposeOperation::Column *column)
    {
        if (!m_wellFormed) {
            return name;
        }
        const QString base = validName(name);
        QString given = base;
        for (int n = 2; m_given.contains(given); ++n) {
            given = base + u'_' + QString::number(n);
        }
        m_given.insert(given);
        column->newName = given != name ? given : QString();
        return given;
    }

private:
    bool m_wellFormed;
    std::set<QString> m_given;
};

class XmlItems
{
public:
    XmlItems(const LevelCompiler &compiler, const std::vector<WriteLevel> &levels,
             const XmlLayout &layout)
        : m_compiler(compiler)
        , m_levels(levels)
        , m_depths(depthsOf(levels, static_cast<int>(XmlItem::SubLevel)))
        , m_layout(layout)
        , m_textForm(layout.wellFormed ? TextForm::XmlStrict : TextForm::XmlText)
        , m_attributeForm(layout.wellFormed ? TextForm::XmlStrict : TextForm::XmlAttribute)
    {
    }

    Compiled compile(size_t level, size_t index) const
    {
        const WriteItem &item = m_levels[level].items[index];
        switch (item.typeAs<XmlItem>()) {
        case XmlItem::Text:
            return ComposeOperation{Kind::Text, m_textForm, fixed(item.text)};
        case XmlItem::Attributes:
            return attributes(m_compiler.findAll(), QString());
        case XmlItem::Subtags:
            return subtags(m_compiler.findAll(), level);
        case XmlItem::SomeAttributes:
        case XmlItem::SomeSubtags:
            return someColumns(item, level);
        case XmlItem::InQuotes:
        case XmlItem::InTag:
        case XmlItem::AsIs:
            return oneColumn(item);
        case XmlItem::SubLevel:
            return m_compiler.callOf(item.calledLevel);
        }
        // Kept for saved graphs: items of an unknown type write nothing.
        return ComposeOperation{};
    }

    /// A line feed and the spaces before an element of `level`, or before what is `deeper` in it.
    QString lineBreak(size_t level, int deeper) const
    {
        return m_layout.indent
                   ? u'\n' +
                         QString((m_depths[level] + deeper) * kIndentStep + *m_layout.indent, u' ')
                   : QString();
    }

private:
    Compiled attributes(Columns columns, const QString &prefix) const
    {
        ItemNames names(m_layout.wellFormed);
        for (ComposeOperation::Column &column : columns) {
            const QString name = m_compiler.columns().names[column.input];
            const bool isCut = !prefix.isEmpty() && name.startsWith(prefix);
            column.before = fixed(
                u' ' + names.next(isCut ? name.mid(prefix.size()) : name, &column) + u"=\""_s);
            column.after = FixedText(u"\"");
        }
        return ComposeOperation{Kind::Values, m_attributeForm, {}, {}, std::move(columns)};
    }

    Compiled subtags(Columns columns, size_t level) const
    {
        ItemNames names(m_layout.wellFormed);
        for (ComposeOperation::Column &column : columns) {
            const QString name = names.next(m_compiler.columns().names[column.input], &column);
            column.before = fixed(lineBreak(level, 1) + u'<' + name + u'>');
            column.after = fixed(u"</"_s + name + u'>');
        }
        return ComposeOperation{
            Kind::Values, m_textForm, {}, fixed(lineBreak(level, 0)), std::move(columns)};
    }

    Compiled someColumns(const WriteItem &item, size_t level) const
    {
        auto columns = m_compiler.find(item.columns);
        if (!columns) {
            return columns.fault();
        }
        return item.typeAs<XmlItem>() == XmlItem::SomeAttributes
                   ? attributes(*std::move(columns), item.p1)
                   : subtags(*std::move(columns), level);
    }

    Compiled oneColumn(const WriteItem &item) const
    {
        if (item.columns.isEmpty()) {
            return Fault{LevelProblem::NoColumnListed};
        }
        auto columns = m_compiler.find(item.columns.mid(0, 1));
        if (!columns) {
            return columns.fault();
        }
        const auto type = item.typeAs<XmlItem>();
        const Kind kind = type == XmlItem::AsIs    ? Kind::RawValue
                          : type == XmlItem::InTag ? Kind::Values
                                                   : Kind::QuotedValue;
        const TextForm form = type == XmlItem::InQuotes ? m_attributeForm : m_textForm;
        return ComposeOperation{kind, form, {}, {}, *std::move(columns)};
    }

    const LevelCompiler &m_compiler;
    const std::vector<WriteLevel> &m_levels;
    std::vector<int> m_depths;
    XmlLayout m_layout;
    TextForm m_textForm;
    TextForm m_attributeForm;
};

} // namespace

/// In a tag, its name and the value of an attribute.
static bool needsXmlValue(std::u16string_view before, std::u16string_view)
{
    const bool isInTag = before.rfind(u'<') + 1 > before.rfind(u'>') + 1; // npos + 1 is 0
    return isInTag && (before.ends_with(u'<') || before.ends_with(u'='));
}

LevelCompiler::Levels compileXmlLevels(const std::vector<WriteLevel> &levels,
                                       const RowView &columns, const XmlLayout &layout)
{
    const LevelCompiler compiler(levels, columns);
    const XmlItems items(compiler, levels, layout);
    auto compiled =
        compiler.compile([&](size_t level, size_t item) { return items.compile(level, item); });
    for (size_t i = 0; compiled && i < levels.size(); ++i) {
        (*compiled)[i].lineBreak = fixed(items.lineBreak(i, 0));
    }
    if (compiled) {
        markNeededValues(*compiled, needsXmlValue);
    }
    return compiled;
}

std::vector<WriteLevel> defaultXmlLevels(bool writeAllColumns, const QStringList &toWrite)
{
    WriteLevel level;
    level.commaSeparated = false;
    level.items = {
        makeItem(XmlItem::Text, u"<R "_s),
        makeItem(writeAllColumns ? XmlItem::Attributes : XmlItem::SomeAttributes, {}, toWrite),
        makeItem(XmlItem::Text, u"/>"_s),
    };
    return {level};
}

} // namespace corvanta::compose
