// The pieces that items become; "a" and "b" are columns:
//
//     dictionary        "a":1,"b":"text"     keys without the item's prefix p1
//     array             1,"text"
//     sub-level         the elements of another level, for the rows of a partition
//     comma             ,                    when the dictionary before wrote a pair
//     text, as-is       unchanged
//
// Brackets and braces come from text items. Syntax: RFC 8259.
#include "codecs/compose/json_levels.h"

#include "base/number.h"
#include "base/text/json_number.h"
#include "codecs/compose/escape.h"

#include <algorithm>
#include <array>
#include <set>

using namespace Qt::StringLiterals;

namespace corvanta::compose {

namespace {

using Compiled = LevelCompiler::Compiled;
using Kind = ComposeOperation::Kind;

/// `name` in quotes and a colon.
template <class Escapes> FixedText keyText(const QString &name)
{
    const std::u16string plain = name.toStdU16String();
    std::u16string escaped(plain.size() * Escapes::kWorst, u'\0');
    const char16_t *const end =
        putEscaped<Escapes>(plain.data(), static_cast<qsizetype>(plain.size()), escaped.data());
    escaped.resize(static_cast<size_t>(end - escaped.data()));
    return FixedText(u'"' + escaped + u"\":");
}

class JsonItems
{
public:
    JsonItems(const LevelCompiler &compiler, const std::vector<WriteLevel> &levels,
              ComposeOperation::TextForm form, const JsonColumns &special)
        : m_compiler(compiler)
        , m_levels(levels)
        , m_form(form)
        , m_bareColumns(special.bare.begin(), special.bare.end())
        , m_jsonColumns(special.json.begin(), special.json.end())
    {
    }

    Compiled compile(size_t level, size_t index) const
    {
        const WriteItem &item = m_levels[level].items[index];
        switch (item.typeAs<JsonItem>()) {
        case JsonItem::Text:
            return ComposeOperation{Kind::Text, m_form, FixedText(item.text.toStdU16String())};
        case JsonItem::Dictionary:
            return values(m_compiler.findAll(), true, QString());
        case JsonItem::Array:
            return values(m_compiler.findAll(), false, QString());
        case JsonItem::SomeDictionary:
        case JsonItem::SomeArray:
            return someValues(item);
        case JsonItem::SubLevel:
            return m_compiler.callOf(item.calledLevel);
        case JsonItem::Comma:
            return comma(level, index);
        case JsonItem::AsIs:
            return asIs(item);
        }
        // Kept for saved graphs: items of an unknown type write nothing.
        return ComposeOperation{};
    }

private:
    FixedText key(const QString &name) const
    {
        return m_form == ComposeOperation::TextForm::JsonStrict ? keyText<JsonStrictEscapes>(name)
                                                                : keyText<JsonEscapes>(name);
    }

    Compiled values(std::vector<ComposeOperation::Column> columns, bool hasKeys,
                    const QString &prefix) const
    {
        for (ComposeOperation::Column &column : columns) {
            const QString name = m_compiler.columns().names[column.input];
            const bool isCut = !prefix.isEmpty() && name.startsWith(prefix);
            column.before = hasKeys ? key(isCut ? name.mid(prefix.size()) : name) : FixedText();
            column.isBare = m_bareColumns.contains(name);
            column.isReady = m_jsonColumns.contains(name);
        }
        return ComposeOperation{Kind::Values, m_form, FixedText(u","), {}, std::move(columns)};
    }

    Compiled someValues(const WriteItem &item) const
    {
        auto columns = m_compiler.find(item.columns);
        const bool isDictionary = item.typeAs<JsonItem>() == JsonItem::SomeDictionary;
        return columns ? values(*std::move(columns), isDictionary, item.p1) : columns.fault();
    }

    Compiled comma(size_t level, size_t index) const
    {
        // Only the item directly before counts: the composer knows whether the last values were
        // written, not which item wrote them.
        const auto before =
            index > 0 ? m_levels[level].items[index - 1].typeAs<JsonItem>() : JsonItem::Text;
        if (before != JsonItem::Dictionary && before != JsonItem::SomeDictionary) {
            return Fault{LevelProblem::NoDictionary};
        }
        return ComposeOperation{Kind::CommaIfWritten};
    }

    Compiled asIs(const WriteItem &item) const
    {
        if (item.columns.isEmpty()) {
            return Fault{LevelProblem::NoColumnListed};
        }
        auto columns = m_compiler.find(item.columns.mid(0, 1));
        if (!columns) {
            return columns.fault();
        }
        return ComposeOperation{Kind::RawValue, m_form, {}, {}, *std::move(columns)};
    }

    const LevelCompiler &m_compiler;
    const std::vector<WriteLevel> &m_levels;
    ComposeOperation::TextForm m_form;
    std::set<QString> m_bareColumns;
    std::set<QString> m_jsonColumns;
};

} // namespace

namespace {

/// The text without the blanks at its ends.
QStringView trimmed(std::u16string_view text)
{
    return QStringView(text.data(), static_cast<qsizetype>(text.size())).trimmed();
}

/// Whether the text ends inside of a string.
bool isInString(QStringView text)
{
    bool isOpen = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\') {
            ++i; // an escaped quote
        } else if (text[i] == u'"') {
            isOpen = !isOpen;
        }
    }
    return isOpen;
}

/// A key and a comma before or after need a value; inside of a string nothing does.
bool needsJsonValue(std::u16string_view before, std::u16string_view after)
{
    const QStringView text = trimmed(before);
    const bool isOpen = text.endsWith(u':') || text.endsWith(u',');
    return (isOpen || trimmed(after).startsWith(u',')) && !isInString(text);
}

} // namespace

LevelCompiler::Levels compileJsonLevels(const std::vector<WriteLevel> &levels,
                                        const RowView &columns, ComposeOperation::TextForm form,
                                        const JsonColumns &special)
{
    const LevelCompiler compiler(levels, columns);
    const JsonItems items(compiler, levels, form, special);
    auto compiled =
        compiler.compile([&](size_t level, size_t item) { return items.compile(level, item); });
    if (compiled) {
        markNeededValues(*compiled, needsJsonValue);
    }
    return compiled;
}

std::vector<WriteLevel> defaultJsonLevels(bool writeAllColumns, const QStringList &toWrite)
{
    WriteLevel level;
    level.items = {
        makeItem(JsonItem::Text, u"{"_s),
        makeItem(writeAllColumns ? JsonItem::Dictionary : JsonItem::SomeDictionary, {}, toWrite),
        makeItem(JsonItem::Text, u"}"_s),
    };
    return {level};
}

bool printsJsonNumber(const QString &format)
{
    constexpr std::array kSamples{0.0, 1.0, -2.5, 1e300};
    FloatFormat numbers;
    return numbers.set(format) && std::all_of(kSamples.begin(), kSamples.end(), [&](double sample) {
               QByteArray text;
               numbers.append(sample, &text);
               const QByteArray number = text.trimmed();
               return isJsonNumber(std::string_view(number.constData(), size_t(number.size())));
           });
}

} // namespace corvanta::compose
