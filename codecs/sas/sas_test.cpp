// Numbers, names and texts of SAS files at their limits, and sinks that fail.
#include "base/bytes.h"
#include "codecs/sas/data_set_writer.h"
#include "codecs/sas/ibm_float.h"
#include "codecs/sas/row_packer.h"
#include "codecs/sas/transport_writer.h"
#include "codecs/sas/variable_names.h"
#include "tests/support/failing_sink.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace corvanta;
using namespace corvanta::sas;
using namespace Qt::StringLiterals;

namespace {

/// The value of the first `width` bytes of an IBM number.
double fromIbm(const char *bytes, int width)
{
    char all[8] = {};
    std::copy_n(bytes, width, all);
    const auto bits = loadBE<quint64>(all);
    const double value = std::ldexp(static_cast<double>(bits << 8 >> 8),
                                    4 * (static_cast<int>(bits >> 56 & 127) - 64) - 56);
    return bits >> 63 != 0 ? -value : value;
}

QByteArray ibm(double value, int width = kNumberBytes, Stored expected = Stored::Exact)
{
    char bytes[8] = {};
    EXPECT_EQ(putIbmFloat(value, width, bytes), expected) << value << " in " << width;
    return {bytes, width};
}

TEST(IbmFloat, HasTheBytesOfTheNote)
{
    EXPECT_EQ(ibm(1).toHex(), "4110000000000000");
    EXPECT_EQ(ibm(-1).toHex(), "c110000000000000");
    EXPECT_EQ(ibm(0.1).toHex(), "401999999999999a");
    EXPECT_EQ(ibm(-118.625).toHex(), "c276a00000000000");
    EXPECT_EQ(ibm(0.0).toHex(), "0000000000000000");
    EXPECT_EQ(ibm(-0.0).toHex(), "0000000000000000"); // a sign alone would be a missing value
    EXPECT_EQ(ibm(2, 3).toHex(), "412000");
    char missing[8];
    putIbmMissing(missing);
    EXPECT_EQ(QByteArray(missing, 8).toHex(), "2e00000000000000");
}

TEST(IbmFloat, StopsAtTheLimitsOfTheRange)
{
    const double tooLarge = std::ldexp(1.0, 252);
    const double smallest = std::ldexp(1.0, -260);
    const double largest = std::nextafter(tooLarge, 0);
    EXPECT_EQ(fromIbm(ibm(largest).constData(), 8), largest);
    EXPECT_EQ(fromIbm(ibm(-smallest).constData(), 8), -smallest);
    for (const double value : {tooLarge, std::numeric_limits<double>::max(), double(INFINITY)}) {
        EXPECT_EQ(ibm(value, 8, Stored::TooLarge).at(0), '.');
        EXPECT_EQ(ibm(-value, 3, Stored::TooLarge), QByteArray(".\0\0", 3));
    }
    for (const double value :
         {std::nextafter(smallest, 0), std::numeric_limits<double>::denorm_min(), -1e-310}) {
        EXPECT_EQ(ibm(value, 8, Stored::Rounded), QByteArray(8, '\0'));
    }
}

TEST(IbmFloat, KeepsWhatFitsEachWidth)
{
    std::mt19937_64 chance(7);
    for (int i = 0; i < 70'000; ++i) {
        const int width = kMinNumberBytes + i % 6;
        const int power = static_cast<int>(chance() % 500) - 250;
        const double value =
            std::ldexp(static_cast<double>(static_cast<qint64>(chance())), power - 63);
        char bytes[8];
        const Stored stored = putIbmFloat(value, width, bytes);
        const double back = fromIbm(bytes, width);
        // The digits that are dropped, for a first digit with one bit.
        const double lost = std::ldexp(std::abs(value), 4 - 8 * (width - 1));
        EXPECT_EQ(stored == Stored::Exact, back == value) << value << " in " << width;
        EXPECT_TRUE(width == 8 ? back == value : std::abs(back - value) < lost) << value;
        EXPECT_LE(std::abs(back), std::abs(value));
    }
    // The largest integers up to which every one is stored.
    for (const int width : {3, 4, 5, 6, 7}) {
        const double whole = std::ldexp(1.0, 8 * (width - 1) - 3);
        EXPECT_EQ(fromIbm(ibm(whole - 1, width), width), whole - 1);
        EXPECT_EQ(fromIbm(ibm(whole, width), width), whole);
    }
}

TEST(Names, AreValid)
{
    const std::pair<QString, QByteArray> cases[] = {
        {u"a1_B"_s, "a1_B"},
        {u"größe"_s, "gro_e"},
        {u"Ünïcödé"_s, "Unicode"},
        {u"日本"_s, "__"},
        {u"1st"_s, "_1st"},
        {u"😀x"_s, "_x"},
        {u""_s, ""},
        {u"a b.c"_s, "a_b_c"},
        {u"_all_"_s, "_all_X"},
        {u"_ERROR_"_s, "_ERROR_X"},
        {u"12345678"_s, "_1234567"},
    };
    for (const auto &[column, name] : cases) {
        EXPECT_EQ(validName(column, 8), name.first(std::min<qsizetype>(name.size(), 8)))
            << column.toStdString();
    }
    EXPECT_EQ(validName(u"_NUMERIC_"_s, 9), "_NUMERICX");
}

/// The names that the columns of a list get; changed ones are marked.
QByteArray unique(const QString &list, Qt::CaseSensitivity sensitivity, qsizetype maxBytes)
{
    const QStringList columns = list.split(u',');
    std::vector<QByteArray> names;
    for (const QString &column : columns) {
        names.push_back(cutUtf8(column.toUtf8(), maxBytes));
    }
    const std::vector<size_t> changed = makeUnique(names, columns, sensitivity, maxBytes);
    QByteArrayList all(names.begin(), names.end());
    for (const size_t i : changed) {
        all[static_cast<qsizetype>(i)] += '*';
    }
    return all.join(',');
}

TEST(Names, BecomeUnique)
{
    const auto whole = Qt::CaseSensitive;
    const auto ignored = Qt::CaseInsensitive;
    EXPECT_EQ(unique(u"a,A,a"_s, whole, 8), "a,A,a2*");
    EXPECT_EQ(unique(u"a,A,a"_s, ignored, 8), "a,A2*,a3*");
    EXPECT_EQ(unique(u",C1,"_s, whole, 8), "C12*,C1,C3*");
    // A name that fits is kept, also after one that was cut to it.
    EXPECT_EQ(unique(u"abcdefghi,abcdefgh,abcdefgh2"_s, whole, 8), "abcdefg2*,abcdefgh,abcdefg3*");
    // Not half a character before the number.
    EXPECT_EQ(unique(u"ab€€,ab€,ab€x"_s, whole, 5), "ab2*,ab€,ab3*");
    QStringList many;
    for (int i = 0; i < 9999; ++i) {
        many << u"column with one name"_s;
    }
    const QByteArrayList names = unique(many.join(u','), ignored, 8).split(',');
    EXPECT_EQ(QSet<QByteArray>(names.begin(), names.end()).size(), 9999);
    EXPECT_EQ(names.last(), "colu9999*");
}

TEST(TextEncoder, CutsBetweenCharacters)
{
    const TextEncoder encoder = TextEncoder::utf8();
    const QByteArray bytes = encoder.encode(u"aé€😀"); // 1, 2, 3 and 4 bytes
    const int ends[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
    for (int width = 0; width < 12; ++width) {
        EXPECT_EQ(encoder.fit(bytes.constData(), bytes.size(), width), ends[width]) << width;
        EXPECT_EQ(cutUtf8(bytes, width), bytes.first(ends[width]));
    }
    const auto latin = TextEncoder::named("ISO-8859-1");
    ASSERT_TRUE(latin);
    EXPECT_EQ(latin->fit("\xE9\x80\x80", 3, 2), 2);
}

TEST(TextEncoder, CountsWhatItReplaces)
{
    const auto count = [](const TextEncoder &encoder, QStringView text,
                          const QByteArray &expected) {
        qint64 replaced = 0;
        EXPECT_EQ(encoder.encode(text, &replaced), expected);
        return replaced;
    };
    const char16_t broken[] = {u'a', 0xD83D, u'b', 0xDE00, 0, u'c'};
    EXPECT_EQ(count(TextEncoder::utf8(), {broken, 6},
                    "a\xEF\xBF\xBD"
                    "b\xEF\xBF\xBD c"),
              3);
    EXPECT_EQ(count(*TextEncoder::named("WINDOWS-1252"), u"€é日😀", "\x80\xE9??"), 2);
    EXPECT_TRUE(TextEncoder::named(" utf8 ")->isUtf8());
    for (const char *name : {"no such one", "", "SHIFT_JIS", "UTF-16", "EBCDIC-US", "UTF-7"}) {
        EXPECT_FALSE(TextEncoder::named(name)) << name;
    }
}

TEST(DisplayFormat, HasANameAWidthAndDecimals)
{
    const auto text = [](const char *format) {
        const auto parsed = DisplayFormat::parse(format);
        return parsed ? parsed->name + '/' + QByteArray::number(parsed->width) + '/' +
                            QByteArray::number(parsed->decimals)
                      : QByteArray("-");
    };
    EXPECT_EQ(text("date9."), "DATE/9/0");
    EXPECT_EQ(text("8.2"), "/8/2");
    EXPECT_EQ(text("$CHAR20."), "$CHAR/20/0");
    for (const char *format : {"", "DATE9", "TOOLONGNM8.", "8.x", "8.2.1", "F99999.1"}) {
        EXPECT_EQ(text(format), "-") << format;
    }
}

/// A packed row of a number and a text.
QByteArray packedRow(double number, const QByteArray &text)
{
    QByteArray row(12, Qt::Uninitialized);
    storeNative(number, row.data());
    storeNative(static_cast<quint32>(text.size()), row.data() + 8);
    return row + text + '\0';
}

std::vector<Variable> variables(int textWidth)
{
    return {{.name = "n"}, {.name = "t", .isText = true, .width = textWidth}};
}

/// Writes rows until a call fails; returns its error.
std::optional<Error> failureOf(TableWriter &writer, qint64 rows)
{
    const QByteArray row = packedRow(1.5, "abc");
    auto done = writer.begin(rows);
    for (qint64 i = 0; i < rows && done; ++i) {
        done = writer.addRows({row.constData(), static_cast<size_t>(row.size())});
    }
    done = done ? writer.finish() : done;
    return done ? std::optional<Error>() : done.fault().code;
}

TEST(Writers, ReportASinkThatFails)
{
    constexpr qint64 kRows = 100'000;
    for (const bool isTransport : {false, true}) {
        const auto write = [&](int failedCall, int *calls) {
            test::FailingSink sink([&](int call) { return call == failedCall; });
            const auto columns = variables(8);
            const std::unique_ptr<TableWriter> writer =
                isTransport ? std::unique_ptr<TableWriter>(
                                  new TransportWriter(sink, TransportVersion::V5, "T", columns))
                            : std::make_unique<DataSetWriter>(sink, columns);
            const auto failure = failureOf(*writer, kRows);
            *calls = sink.calls();
            return failure;
        };
        int calls = 0;
        EXPECT_EQ(write(-1, &calls), std::nullopt);
        EXPECT_GT(calls, 5);
        for (const int failed : {0, 1, calls / 2, calls - 1}) {
            int ignored = 0;
            EXPECT_EQ(write(failed, &ignored), Error::CannotWrite) << failed;
        }
    }
}

TEST(Writers, RefuseWhatTheFormatsCannotHold)
{
    MemorySink sink;
    const auto many = [](size_t n, int width) {
        return std::vector<Variable>(n, {.name = "v", .isText = true, .width = width});
    };
    EXPECT_EQ(DataSetWriter(sink, many(4096, 1)).begin(1).fault().code, Error::TooManyVariables);
    EXPECT_EQ(DataSetWriter(sink, variables(1)).begin(qint64(1) << 31).fault().code,
              Error::TooManyRows);
    std::vector<Variable> named = many(300, kMaxTextBytes);
    for (Variable &variable : named) {
        variable.label = QByteArray(kMaxLabelBytes, 'x');
    }
    EXPECT_EQ(DataSetWriter(sink, named).begin(1).fault().code, Error::NamesTooLong);
    EXPECT_EQ(
        TransportWriter(sink, TransportVersion::V8, "T", many(10'000, 1)).begin(1).fault().code,
        Error::TooManyVariables);
    EXPECT_TRUE(sink.bytes().isEmpty());
}

TEST(TransportWriter, CountsRowsThatReadersTakeForPadding)
{
    const std::pair<std::vector<const char *>, int> cases[] = {
        {{}, 0}, {{"x"}, 0}, {{"", "x"}, 0}, {{"x", "", ""}, 2}, {{""}, 1}, {{" ", "  "}, 2},
    };
    for (const auto &[texts, blank] : cases) {
        MemorySink sink;
        TransportWriter writer(sink, TransportVersion::V5, "T",
                               {{.name = "t", .isText = true, .width = 70}});
        ASSERT_TRUE(writer.begin(static_cast<qint64>(texts.size())));
        for (const char *const text : texts) {
            const QByteArray row = packedRow(0, text).mid(8);
            ASSERT_TRUE(writer.addRows({row.constData(), static_cast<size_t>(row.size())}));
        }
        ASSERT_TRUE(writer.finish());
        EXPECT_EQ(sink.bytes().size() % 80, 0);
        EXPECT_EQ(writer.blankRowsAtEnd(), blank);
    }
}

} // namespace
