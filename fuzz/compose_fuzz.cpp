// Any levels and rows as JSON or XML: the text is valid UTF-8. The default level in its strict form
// gives a document whose names and values are those of the table.
//
// Byte 0: options. The rules, the levels and the table follow.
#include "base/number.h"
#include "codecs/compose/json_levels.h"
#include "codecs/compose/level_composer.h"
#include "codecs/compose/xml_levels.h"
#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tokens/xml_tokenizer.h"
#include "fuzz/support/require.h"
#include "fuzz/support/table.h"

#include <cmath>

using namespace corvanta;
using namespace corvanta::compose;
using TextForm = ComposeOperation::TextForm;

namespace {

/// A compiled table as text; nothing if a text is too large for a block. `isWellFormed`: XML whose
/// escapes leave the characters that it does not have to the block.
std::optional<QByteArray> composed(std::vector<ComposeLevel> levels, const ValueRules &rules,
                                   Encoding encoding, const FuzzTable &table,
                                   bool isWellFormed = false)
{
    QByteArray text;
    TextBlock block(encoding, [&text](const void *bytes, qint64 n) {
        text.append(static_cast<const char *>(bytes), n);
        return true;
    });
    if (isWellFormed) {
        block.replaceUnknown();
    }
    LevelComposer composer(std::move(levels), rules, block);
    for (int row = 0; row < table.rowCount(); ++row) {
        composer.putRow(table.row(row));
    }
    composer.endElements();
    block.drainAll();
    return block.failure() == TextBlock::Failure::None ? std::optional(text) : std::nullopt;
}

/// The text of a cell that has a value.
std::optional<std::u16string> valueOf(cell::Type type, const uchar *bytes)
{
    std::array<char, kNumberChars> digits{};
    const auto text = [&](int n) { return std::u16string(digits.data(), digits.data() + n); };
    if (type == cell::Type::Key) {
        const auto key = loadNative<quint32>(bytes);
        return cell::isMissingKey(key) ? std::nullopt
                                       : std::optional(text(putUInt(key, digits.data())));
    }
    if (type == cell::Type::Double) {
        const auto value = loadNative<double>(bytes);
        return std::isfinite(value) ? std::optional(text(putShortest(value, digits.data())))
                                    : std::nullopt;
    }
    const cell::Text units = cell::readText(bytes);
    return units.isMissing() ? std::nullopt : std::optional(withoutLoneSurrogates(units.view()));
}

using Texts = std::vector<std::u16string>;

/// Names and values of all cells that have one.
Texts textsOf(const FuzzTable &table)
{
    Texts texts;
    for (int row = 0; row < table.rowCount(); ++row) {
        const RowView view = table.row(row);
        for (int i = 0; i < view.columns; ++i) {
            if (const auto value = valueOf(view.type(i), view.cells[i])) {
                texts.push_back(withoutLoneSurrogates(view.names[i].toStdU16String()));
                texts.push_back(*value);
            }
        }
    }
    return texts;
}

Texts namesAndTexts(const QByteArray &json)
{
    using markup::Token;
    MemorySource source(json);
    markup::JSONTokenizer tokenizer(source, 1024, u"");
    Texts texts;
    bool isEmpty = false;
    for (Token token = tokenizer.nextToken(); token != Token::EndOfData;
         token = tokenizer.nextToken()) {
        require(token != Token::Error);
        // The items of the array have no name; those of the table begin with "c".
        if (token == Token::Text || (token == Token::Start && !tokenizer.name().empty())) {
            texts.emplace_back(tokenizer.text());
        } else if (token == Token::End && isEmpty) {
            texts.emplace_back(); // an empty text has no token
        }
        isEmpty = token == Token::Start && !tokenizer.name().empty();
    }
    return texts;
}

Texts attributeValues(const QByteArray &xml)
{
    using markup::Token;
    MemorySource source(xml);
    markup::XMLTokenizer tokenizer(source, 1024);
    require(bool(tokenizer.setEncoding(markup::CharMode::Utf8, {}, markup::InvalidBytes::Fail)));
    Texts texts;
    for (Token token = tokenizer.nextToken(); token != Token::EndOfData;
         token = tokenizer.nextToken()) {
        require(token != Token::Error);
        for (size_t i = 0; token == Token::Start && i < tokenizer.attributes().size(); ++i) {
            texts.push_back(decoded(tokenizer.attributeValue(i)));
        }
    }
    return texts;
}

/// What a reader of JSON gives for the texts: NUL becomes a space.
Texts fromJson(Texts texts)
{
    for (std::u16string &text : texts) {
        std::replace(text.begin(), text.end(), u'\0', u' ');
    }
    return texts;
}

/// What a reader of XML gives for the values; the names, which are changed, are left out.
Texts fromXml(Texts texts)
{
    Texts values;
    for (size_t i = 1; i < texts.size(); i += 2) {
        for (char16_t &unit : texts[i]) {
            const bool isSpace = unit == u'\t' || unit == u'\n' || unit == u'\r';
            unit = (unit < u' ' && !isSpace) || unit >= 0xFFFE ? kReplacementCharacter : unit;
        }
        values.push_back(std::move(texts[i]));
    }
    return values;
}

void checkDefaultLevels(const FuzzTable &table)
{
    ValueRules rules;
    rules.floatFormat.set(QString());
    const auto json = composed(
        *compileJsonLevels(defaultJsonLevels(true, {}), table.row(0), TextForm::JsonStrict), rules,
        Encoding::Utf8, table);
    require(json && namesAndTexts("[" + *json + "]") == fromJson(textsOf(table)));
    const auto xml =
        composed(*compileXmlLevels(defaultXmlLevels(true, {}), table.row(0), {std::nullopt, true}),
                 rules, Encoding::Utf8, table, true);
    require(xml && attributeValues("<a>" + *xml + "</a>") == fromXml(textsOf(table)));
}

ValueRules rulesOf(Feed &feed)
{
    const int flags = feed.byte();
    ValueRules rules;
    rules.missingText = (flags & 1) != 0 ? std::optional(FixedText(u"null")) : std::nullopt;
    rules.missingNumber = (flags & 2) != 0 ? std::optional(FixedText(u"-")) : std::nullopt;
    rules.notFinite = (flags & 4) != 0 ? std::optional(FixedText(u"0")) : std::nullopt;
    rules.namesNotFinite = (flags & 8) != 0;
    rules.specialBool = (flags & 16) != 0;
    rules.decimalComma = (flags & 32) != 0;
    rules.floatFormat.set(feed.string(feed.below(16)));
    return rules;
}

/// Up to three levels of up to five items. Names of columns and levels may be unknown.
std::vector<WriteLevel> levelsOf(Feed &feed, const std::vector<QString> &names)
{
    const auto column = [&] {
        const auto index = static_cast<size_t>(feed.below(8));
        return index < names.size() ? names[index] : QStringLiteral("c?");
    };
    std::vector<WriteLevel> levels(static_cast<size_t>(1 + feed.below(3)));
    for (size_t i = 0; i < levels.size(); ++i) {
        levels[i].name = QString::number(i);
        levels[i].partitionCol = column();
        levels[i].commaSeparated = feed.flag();
        levels[i].items.resize(static_cast<size_t>(feed.below(6)));
        for (WriteItem &item : levels[i].items) {
            item.type = feed.below(10);
            item.text = feed.string(feed.below(4));
            item.calledLevel = QString::number(feed.below(4));
            item.p1 = names.front().left(feed.below(3));
            for (int n = feed.below(4); n > 0; --n) {
                item.columns << column();
            }
        }
    }
    return levels;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr TextForm kForms[] = {TextForm::JsonString, TextForm::JsonStringWithLineFeed,
                                   TextForm::JsonStrict};
    Feed feed(data, size);
    const int flags = feed.byte();
    const ValueRules rules = rulesOf(feed);
    // The levels have their own part of the input, because their columns are those of the table.
    Feed ofLevels = feed;
    feed.bytes(60);
    const FuzzTable table(feed);
    const std::vector<WriteLevel> levels = levelsOf(ofLevels, table.names());
    const auto compiled =
        (flags & 1) != 0
            ? compileJsonLevels(levels, table.row(0), kForms[flags / 2 % 3])
            : compileXmlLevels(
                  levels, table.row(0),
                  {(flags & 2) != 0 ? std::optional(flags / 16) : std::nullopt, (flags & 4) != 0});
    if (compiled) {
        const Encoding encoding = (flags & 8) != 0 ? Encoding::Utf16Le : Encoding::Utf8;
        const auto text = composed(*compiled, rules, encoding, table);
        Utf8Stop stop = Utf8Stop::End;
        const bool isChecked = text && encoding == Encoding::Utf8;
        require(!isChecked || wellFormedUtf8(text->data(), text->size(), &stop) == text->size());
    }
    checkDefaultLevels(table);
    return 0;
}
