// Levels composed from rows that are gone when the next one comes.
#include "base/bytes.h"
#include "codecs/compose/json_levels.h"
#include "codecs/compose/level_composer.h"

#include <gtest/gtest.h>

#include <array>

using namespace corvanta;
using namespace corvanta::compose;
using namespace Qt::StringLiterals;

namespace {

/// A table of the columns k (key), f (double), and the texts t and u, with one row at a time.
class Table
{
public:
    RowView row(quint32 key, double number, std::u16string_view t, std::u16string_view u)
    {
        m_bytes.fill(0xEE); // what an earlier row left is gone
        std::memcpy(m_bytes.data(), &key, sizeof key);
        std::memcpy(m_bytes.data() + 8, &number, sizeof number);
        putText(t, 101, 2);
        putText(u, 501, 3);
        return {m_cells.data(), m_names.data(), m_types.data(), 4};
    }

private:
    void putText(std::u16string_view text, size_t at, size_t column)
    {
        const auto units = static_cast<qsizetype>(text.size());
        const int lengthBytes = cell::lengthBytes(cell::codeOfText(units));
        m_cells[column] = m_bytes.data() + at + (lengthBytes - 1) % 2; // aligns the units
        uchar *const out = cell::putLength(const_cast<uchar *>(m_cells[column]),
                                           cell::codeOfText(units), lengthBytes);
        std::memcpy(out, text.data(), text.size() * sizeof(char16_t));
    }

    alignas(8) std::array<uchar, 1000> m_bytes{};
    std::array<const uchar *, 4> m_cells{m_bytes.data(), m_bytes.data() + 8};
    const std::array<QString, 4> m_names{u"k"_s, u"f"_s, u"t"_s, u"u"_s};
    const std::array<MetaInfo, 4> m_types{
        MetaInfo(MetaInfo::Key, -1), MetaInfo(MetaInfo::Float, -1), MetaInfo(MetaInfo::Unknown, -1),
        MetaInfo(MetaInfo::Unknown, -1)};
};

WriteItem text(const QString &text)
{
    return makeItem(JsonItem::Text, text);
}

WriteItem array(const QStringList &columns)
{
    return makeItem(JsonItem::SomeArray, {}, columns);
}

WriteItem raw(const QString &column)
{
    return makeItem(JsonItem::AsIs, {}, {column});
}

WriteItem subLevel(const QString &name)
{
    return {static_cast<int>(JsonItem::SubLevel), {}, name, {}, {}};
}

} // namespace

/// A caller is finished from its own row, whatever the length of the texts in it, and a second
/// sub-level writes one element of that row.
TEST(LevelComposer, TheRestOfACallerIsWrittenFromItsOwnRow)
{
    const std::vector<WriteLevel> levels{
        {u"top"_s,
         {},
         true,
         {text(u"<"_s), array({u"k"_s}), text(u"["_s), subLevel(u"a"_s), text(u"]"_s),
          array({u"t"_s, u"f"_s}), subLevel(u"b"_s), text(u">"_s)}},
        {u"a"_s, u"k"_s, true, {raw(u"f"_s)}},
        {u"b"_s, u"f"_s, true, {text(u"{"_s), subLevel(u"c"_s), raw(u"k"_s), text(u"}"_s)}},
        {u"c"_s, u"t"_s, true, {array({u"u"_s, u"f"_s})}},
    };
    const std::u16string longText(150, u'l'); // its length code has two bytes
    Table table;
    std::string written;
    TextBlock block(Encoding::Utf8, [&](const void *bytes, qint64 n) {
        written.append(static_cast<const char *>(bytes), static_cast<size_t>(n));
        return true;
    });
    auto compiled = compileJsonLevels(levels, table.row(1, 1, u"", u""),
                                      ComposeOperation::TextForm::JsonString);
    ASSERT_TRUE(compiled);
    LevelComposer composer(*std::move(compiled), {}, block);
    composer.putRow(table.row(1, 1.5, u"first", longText));
    composer.putRow(table.row(1, 2.5, u"second", u"-"));
    composer.putRow(table.row(2, 3.5, longText, u""));
    composer.putRow(table.row(cell::kMissingKey, 4.5, u"t", u"u"));
    composer.endElements();
    block.drainAll();
    const std::string longBytes(150, 'l');
    EXPECT_EQ(written, "<1[1.5,2.5]\"first\",1.5{\"" + longBytes + "\",1.51}>," + "<2[3.5]\"" +
                           longBytes + "\",3.5{\"\",3.52}>," + "<[4.5]\"t\",4.5{\"u\",4.5}>");
}

TEST(JsonNumbers, FormatsThatPrintOtherTextsAreFound)
{
    for (const char *const format : {"", "%g", "%.17g", "%.2f", "%10.3e", "%-9g", "%.0f", "%G"}) {
        EXPECT_TRUE(printsJsonNumber(QString::fromLatin1(format))) << format;
    }
    for (const char *const format : {"%a", "%+g", "%05g", "%#.0f", "x%g", "%g%%", "%g 1", "%d"}) {
        EXPECT_FALSE(printsJsonNumber(QString::fromLatin1(format))) << format;
    }
}
