// Compares the corpus tables with their golden content, and reads handmade tables with every field
// type and every kind of damage.
#include "codecs/dbf/table_reader.h"
#include "tests/support/corpus.h"
#include "tests/support/sweeps.h"

#include <QDir>

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <map>
#include <set>

using namespace corvanta;
using namespace corvanta::dbf;

namespace {

using Row = std::vector<std::string>;

struct Arena
{
    uchar *alloc(int n)
    {
        blocks.emplace_back(static_cast<size_t>(n) + 1);
        return blocks.back().data() + (n & 1);
    }
    std::deque<std::vector<uchar>> blocks;
};

std::string textOf(const uchar *bytes, CellType type)
{
    switch (type) {
    case CellType::Key: {
        const auto key = loadNative<quint32>(bytes);
        return cell::isMissingKey(key) ? "-" : std::to_string(key);
    }
    case CellType::Double: {
        const auto value = loadNative<double>(bytes);
        return cell::isMissingDouble(value) ? "-"
                                            : QByteArray::number(value, 'g', 17).toStdString();
    }
    case CellType::Text:
        break;
    }
    const cell::Text text = cell::readText(bytes);
    return text.isMissing()
               ? "-"
               : QString(reinterpret_cast<const QChar *>(text.data()), text.size()).toStdString();
}

struct Table
{
    std::vector<std::string> names;
    std::vector<char> types;
    std::vector<Row> rows;
    Findings findings;
    std::optional<Fault<Error>> fault;
};

struct Inputs
{
    QByteArray table;
    std::optional<QByteArray> memo;
    std::optional<MemoFormat> format;
    bool isLevel7 = false;
    bool readsAllTypes = false;
    MemoFile::Access access = MemoFile::Access::Buffered;
    qint64 pieceBytes = -1;
    qint64 bufferBytes = 1;
};

Table read(const Inputs &inputs, const TextDecoder &decoder = TextDecoder::unconverted())
{
    Table table;
    MemorySource source(inputs.table, inputs.pieceBytes);
    auto reader = TableReader::open(source, decoder, {inputs.isLevel7, inputs.readsAllTypes},
                                    inputs.bufferBytes);
    if (!reader) {
        table.fault = reader.fault();
        return table;
    }
    MemorySource memoSource(inputs.memo.value_or(QByteArray()));
    MemoFile memo(memoSource, inputs.format.value_or(memoFormatOf((*reader)->header())),
                  inputs.access, inputs.bufferBytes);
    if (inputs.memo) {
        (*reader)->setMemoFile(&memo);
    }
    const auto &columns = (*reader)->columns();
    for (size_t i = 0; i < columns.size(); ++i) {
        table.names.push_back((*reader)->columnName(i).toStdString());
        table.types.push_back(columns[i].type);
    }
    Arena arena;
    while (true) {
        const auto found = (*reader)->next();
        if (!found || *found == TableReader::Item::End) {
            table.fault = found ? std::nullopt : std::optional(found.fault());
            table.findings = (*reader)->findings();
            return table;
        }
        if (*found == TableReader::Item::DeletedRecord) {
            continue;
        }
        Row row;
        for (size_t i = 0; i < columns.size(); ++i) {
            row.push_back(textOf((*reader)->cell(i, arena), columns[i].cell));
        }
        table.rows.push_back(row);
        arena.blocks.clear();
    }
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

std::vector<Row> parseCsv(const std::string &csv)
{
    std::vector<Row> rows(1, Row(1));
    bool isQuoted = false;
    for (size_t i = 0; i < csv.size(); ++i) {
        const char c = csv[i];
        if (c == '"' && isQuoted && csv[i + 1] == '"') {
            rows.back().back() += csv[++i];
        } else if (c == '"') {
            isQuoted = !isQuoted;
        } else if (!isQuoted && c == ',') {
            rows.back().emplace_back();
        } else if (!isQuoted && c == '\n') {
            rows.emplace_back(1);
        } else if (isQuoted || c != '\r') {
            rows.back().back() += c;
        }
    }
    rows.pop_back();
    return rows;
}

/// A cell as in the golden files: outer spaces and NULs trimmed, line feeds without carriage
/// returns, nothing for a missing value.
std::string goldenForm(std::string text, char type)
{
    if (text == "-") {
        return {};
    }
    const std::string padding(" \0", 2);
    text.erase(0, std::min(text.find_first_not_of(padding), text.size()));
    text.erase(text.find_last_not_of(padding) + 1);
    std::erase(text, '\r');
    if (type == 'L') {
        return std::string("TtYy1").find(text) != std::string::npos && !text.empty()   ? "1"
               : std::string("FfNn0").find(text) != std::string::npos && !text.empty() ? "0"
                                                                                       : "";
    }
    return text;
}

// A handmade table: fields, then records without their flags.
struct FieldSpec
{
    const char *name;
    char type;
    int length;
};

QByteArray makeTable(uchar version, const std::vector<FieldSpec> &fields,
                     const QByteArrayList &records, bool isLevel7 = false)
{
    const int fixed = isLevel7 ? 68 : 32;
    const int descriptorBytes = isLevel7 ? 48 : 32;
    const int headerBytes = fixed + descriptorBytes * static_cast<int>(fields.size()) + 1;
    QByteArray table(fixed, '\0');
    int recordBytes = 1;
    for (const FieldSpec &field : fields) {
        QByteArray descriptor(descriptorBytes, '\0');
        descriptor.replace(0, static_cast<qsizetype>(strlen(field.name)), field.name);
        descriptor[isLevel7 ? 32 : 11] = field.type;
        descriptor[isLevel7 ? 33 : 16] = static_cast<char>(field.length);
        table += descriptor;
        recordBytes += field.length;
    }
    table += '\x0D';
    table[0] = static_cast<char>(version);
    storeLE<quint32>(static_cast<quint32>(records.size()), table.data() + 4);
    storeLE<quint16>(static_cast<quint16>(headerBytes), table.data() + 8);
    storeLE<quint16>(static_cast<quint16>(recordBytes), table.data() + 10);
    for (const QByteArray &record : records) {
        EXPECT_EQ(record.size(), recordBytes - 1);
        table += ' ' + record;
    }
    return table + '\x1A';
}

QByteArray le32(qint64 value)
{
    QByteArray bytes(4, '\0');
    storeLE(static_cast<quint32>(value), bytes.data());
    return bytes;
}

QByteArray le64(double value)
{
    QByteArray bytes(8, '\0');
    storeLE(std::bit_cast<quint64>(value), bytes.data());
    return bytes;
}

} // namespace

TEST(DbfCorpus, TablesEqualTheirGoldenContent)
{
    CORVANTA_NEEDS_CORPUS();
    const std::map<std::string, std::string> memos = {
        {"client", "client.dbt"},     {"dbase_83", "dbase_83.dbt"}, {"dbase_8b", "dbase_8b.dbt"},
        {"dbase_30", "dbase_30.fpt"}, {"memotest", "memotest.FPT"}, {"vfp_calls", "vfp_calls.FPT"},
        {"agencias", "AGENCIAS.DBT"}};
    // Files where the program that wrote the golden file is wrong, with the reason.
    const std::map<std::string, const char *> differences = {
        {"mazovia", "the peer takes only records with a blank as flag; here only '*' is deleted"},
        {"myfileafter-corrupted",
         "the header is 263 bytes short; the peer skips NULs until it finds a blank"},
        {"wrong-exented-character-field",
         "the peer takes the decimals of a C field for the high byte of its length"},
        {"books", "type Y refuses the table"},
        {"dbase_31", "type Y refuses the table"},
        {"vfp_employees", "type Y refuses the table"}};
    // The length of a dBase IV memo holds its header; that program reads eight bytes too many.
    const std::set<std::string> dbase4 = {"client", "dbase_8b"};
    const QDir dir(test::corpusFile(QStringLiteral("dbf")));
    int compared = 0;
    for (const QString &golden :
         QDir(dir.filePath(QStringLiteral("golden"))).entryList({QStringLiteral("*.csv")})) {
        const std::string name = golden.section(QLatin1Char('.'), 0, 0).toStdString();
        if (differences.contains(name)) {
            continue;
        }
        for (const auto access : {MemoFile::Access::Buffered, MemoFile::Access::InMemory}) {
            Inputs inputs{.table = bytesOf(
                              dir.filePath(QString::fromStdString(name) + QStringLiteral(".dbf"))),
                          .access = access};
            if (memos.contains(name)) {
                const QString memo = QString::fromStdString(memos.at(name));
                inputs.memo = bytesOf(dir.filePath(memo));
                if (memo.endsWith(QLatin1String(".fpt"), Qt::CaseInsensitive)) {
                    inputs.format = MemoFormat::FoxPro;
                }
            }
            const Table table = read(inputs);
            ASSERT_FALSE(table.fault) << name << table.fault->detail.toStdString();
            const auto rows =
                parseCsv(bytesOf(dir.filePath(QStringLiteral("golden/") + golden)).toStdString());
            ASSERT_EQ(table.rows.size(), rows.size() - 1) << name;
            std::vector<size_t> columns;
            for (size_t i = 0; i < table.names.size(); ++i) {
                if (strchr("CDNFLM", table.types[i]) != nullptr) {
                    columns.push_back(i);
                }
            }
            ASSERT_EQ(columns.size(), rows[0].size()) << name;
            for (size_t c = 0; c < columns.size(); ++c) {
                EXPECT_EQ(table.names[columns[c]], rows[0][c]) << name;
                if (std::count(rows[0].begin() + static_cast<qsizetype>(c) + 1, rows[0].end(),
                               rows[0][c]) > 0) {
                    continue; // of columns with the same name the peer has the last one's values in
                              // all
                }
                for (size_t r = 0; r < table.rows.size(); ++r) {
                    const char type = table.types[columns[c]];
                    const std::string ours = goldenForm(table.rows[r][columns[c]], type);
                    std::string theirs = goldenForm(rows[r + 1][c], type);
                    if (type == 'M' && theirs.starts_with(ours) && dbase4.contains(name)) {
                        EXPECT_LE(theirs.size(), ours.size() + 8);
                        theirs = ours;
                    }
                    ASSERT_EQ(ours, theirs) << name << " row " << r << " column " << rows[0][c];
                }
            }
            EXPECT_EQ(table.findings.unreadableMemos.count(), 0) << name;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 2 * 17);
}

TEST(DbfCorpus, OtherTablesReadAsExpected)
{
    CORVANTA_NEEDS_CORPUS();
    struct Case
    {
        const char *name;
        size_t rows;
        size_t columns;
        const char *first;
    };
    const Case cases[] = {
        {"mazovia", 2, 2, "2020-01-04|English"},
        {"myfileafter-corrupted", 1, 21, nullptr},
        {"wrong-exented-character-field", 16, 10,
         "GEO_1|GeoFlg0061|0|25710.59|1.0000|2.00|0.00|2000.00|0|-"},
        {"continents-null-header-record-terminator", 7, 1, nullptr},
        {"continents_no_header_record_terminator", 7, 1, nullptr},
        {"dbase_02", 9, 14,
         "2|Stegman|Joe|4421 W 166th ST|LAWNDALE|90260-|370-4846|257-89-9632|07/31/82|  /  "
         "/|TEC|TCH|6.000|6.000"},
        {"dbase_03_cyrillic", 2, 2, nullptr},
        {"dbase_32", 1, 1, "-"},
        {"dbase_7", 3, 4, "-|20150223|DFG|1"},
        {"dbase_f5", 975, 59, nullptr},
        {"polygon", 1, 0, ""},
        {"test_delete", 2, 1, "john"},
    };
    for (const Case &c : cases) {
        const Table table = read({.table = bytesOf(test::corpusFile(
                                      QStringLiteral("dbf/%1.dbf").arg(QLatin1String(c.name))))});
        ASSERT_FALSE(table.fault) << c.name << ": " << table.fault->detail.toStdString();
        EXPECT_EQ(table.rows.size(), c.rows) << c.name;
        EXPECT_EQ(table.names.size(), c.columns) << c.name;
        std::string first;
        for (const std::string &cell : table.rows[0]) {
            first += (&cell == table.rows[0].data() ? "" : "|") + cell;
        }
        EXPECT_TRUE(c.first == nullptr || first == c.first) << c.name << ": " << first;
    }
    struct Refused
    {
        const char *name;
        Error error;
        const char *detail;
    };
    const Refused refused[] = {
        {"books", Error::UnsupportedField, "YPURCHASE_P"},
        {"dbase_31", Error::UnsupportedField, "YUNITPRICE"},
        {"foxpro_currency_01", Error::UnsupportedField, "Ycurrencyp"},
        {"vfp_employees", Error::UnsupportedField, "YBILLINGRAT"},
        {"dbase_8c", Error::UnsupportedField, "GOLE Graphic"},
    };
    for (const Refused &c : refused) {
        const Table table = read({.table = bytesOf(test::corpusFile(
                                      QStringLiteral("dbf/%1.dbf").arg(QLatin1String(c.name))))});
        ASSERT_TRUE(table.fault) << c.name;
        EXPECT_EQ(table.fault->code, c.error) << c.name;
        EXPECT_EQ(table.fault->detail.toStdString(), c.detail) << c.name;
    }
}

TEST(Dbf, EveryFieldTypeIsConverted)
{
    const std::vector<FieldSpec> fields = {
        {"C", 'C', 6},  {"N", 'N', 5}, {"D", 'D', 8}, {"F", 'F', 4}, {"L", 'L', 1},
        {"I", 'I', 4},  {"O", 'O', 8}, {"Z", '0', 2}, {"B", 'B', 8}, {"T", 'T', 8},
        {"AT", '@', 8}, {"P", '+', 4}, {"X", 'Q', 3}};
    const QByteArray records[] = {
        " a b  "
        "  7.5"
        "20261121"
        "-1.5"
        "T" +
            le32(-7) + le64(0.25) + "??" + le64(1e300) + le32(2451545) + le32(43'199'999) +
            le32(2440588) + le32(999) + le32(42) + "xyz",
        QByteArray(6 + 5 + 8 + 4, ' ') + "?" + le32(0) + le64(-2.5) + "??" + le64(0) + le32(0) +
            le32(0) + le32(5) + le32(5) + le32(0) + "xyz"};
    const Table table = read({.table = makeTable(0x30, fields, {records[0], records[1]})});
    ASSERT_FALSE(table.fault);
    EXPECT_EQ(table.names.size(), 12U); // Q is skipped
    ASSERT_EQ(table.rows.size(), 2U);
    EXPECT_EQ(table.rows[0],
              (Row{" a b", "7.5", "20261121", "-1.5", "1", "-7", "0.25", "-",
                   "1.0000000000000001e+300", "20000101 12:00:00", "19700101 00:00:01", "42"}));
    EXPECT_EQ(table.rows[1], (Row{"-", "-", "-", "-", "-", "0", "-2.5", "-", "0", "-", "-", "0"}));
    for (const char type : {'G', 'P', 'Y', 'B'}) {
        const QByteArray one = makeTable(0x03, {{"a", type, 8}}, {le32(-15'000) + le32(-1)});
        EXPECT_EQ(read({.table = one}).fault->code, Error::UnsupportedField) << type;
        const Table all = read({.table = one, .readsAllTypes = true});
        ASSERT_EQ(all.rows.size(), 1U) << type;
        EXPECT_EQ(all.rows[0], type == 'Y' ? Row{"-1.5"} : Row{}) << type;
    }
}

TEST(Dbf, Level7NumbersAreReadInBothForms)
{
    const std::vector<FieldSpec> fields = {
        {"A name longer than eleven bytes", '+', 4}, {"I", 'I', 4}, {"O", 'O', 8}, {"AT", '@', 8}};
    const auto be64 = [](quint64 value) {
        QByteArray bytes(8, '\0');
        storeBE(value, bytes.data());
        return bytes;
    };
    const auto own = [&](double value) {
        const auto bits = std::bit_cast<quint64>(value);
        return be64(value < 0 ? ~bits : bits | quint64(1) << 63);
    };
    const QByteArray noon = le32(2451773) + le32(62'501'310); // 2000-08-16 17:21:41.310
    const QByteArray endOfFebruary = le32(2451969) + le32(0);
    const QByteArray plain = makeTable(4, fields,
                                       {le32(1) + le32(-2) + le64(0.25) + noon,
                                        le32(256) + le32(0) + le64(-1e100) + QByteArray(8, '\0'),
                                        le32(3) + le32(0) + le64(1) + endOfFebruary},
                                       true);
    const QByteArray sorting = makeTable(
        4, fields,
        {QByteArray("\x80\0\0\1\x7F\xFF\xFF\xFE", 8) + own(0.25) + be64(0x42CCB20E0340DF00),
         QByteArray("\x80\0\1\0\x80\0\0\0", 8) + own(-1e100) + be64(0), QByteArray(24, '\0')},
        true);
    std::vector<Row> rows = {{"1", "-2", "0.25", "20000816 17:21:41"},
                             {"256", "0", "-1e+100", "-"},
                             {"3", "0", "1", "20010228 00:00:00"}};
    const Table table = read({.table = plain, .isLevel7 = true});
    EXPECT_EQ(table.names[0], "A name longer than eleven bytes");
    EXPECT_EQ(table.rows, rows);
    rows.back() = Row(4, "-"); // all zeros: an empty field
    EXPECT_EQ(read({.table = sorting, .isLevel7 = true}).rows, rows);
    for (size_t i = 0; i < fields.size(); ++i) { // each type alone determines the form
        QByteArray record = sorting.mid(68 + 4 * 48 + 1 + 1);
        record = record.mid(qsizetype(i < 2 ? i * 4 : i * 8 - 8), fields[i].length);
        EXPECT_EQ(read({.table = makeTable(4, {fields[i]}, {record}, true)}).rows.at(0).at(0),
                  rows[0][i]);
    }
}

TEST(Dbf, TheLayoutThatMatchesTheRecordLengthIsUsed)
{
    const std::vector<FieldSpec> fields = {{"first", 'C', 2}, {"second", 'N', 3}};
    for (const bool isLevel7 : {false, true}) {
        QByteArray table = makeTable(isLevel7 ? 4 : 3, fields, {"ab 12"}, isLevel7);
        for (const QByteArray &driver : {QByteArray(8, '\0'), QByteArray("DB437US0")}) {
            if (isLevel7) {
                table.replace(32, 8, driver);
            }
            for (const bool isAskedFor : {false, true}) {
                const Table result = read({.table = table, .isLevel7 = isAskedFor});
                EXPECT_EQ(result.names, (std::vector<std::string>{"first", "second"}));
                EXPECT_EQ(result.rows, (std::vector<Row>{{"ab", "12"}}));
            }
        }
        // Padding after the fields matches neither layout: then the parameter decides.
        storeLE<quint16>(16, table.data() + 10);
        table += QByteArray(16, ' ');
        EXPECT_EQ(read({.table = table, .isLevel7 = isLevel7}).names.size(), 2U);
        EXPECT_TRUE(read({.table = table, .isLevel7 = !isLevel7}).names.empty());
    }
}

TEST(Dbf, TextsAreDecodedInEveryEncoding)
{
    const QByteArray table = makeTable(3, {{"C\x80", 'C', 6}},
                                       {"\x80\xE9"
                                        "a\xC3\xA9 "});
    struct Case
    {
        TextDecoder decoder;
        const char *text;
    };
    const Case cases[] = {
        {TextDecoder::windows1252(), "€éaÃ©"},
        {TextDecoder::unconverted(), "\u0080éaÃ©"},
        {TextDecoder::utf8(), "\uFFFD\uFFFDaé"},
        {TextDecoder::named(QStringLiteral("ISO-8859-15")), "\u0080éaÃ©"},
        {TextDecoder::named(QStringLiteral("CP1251")), "ЂйaГ©"},
        {TextDecoder::named(QStringLiteral("no such encoding")), "€éaÃ©"},
    };
    for (const Case &c : cases) {
        const Table result = read({.table = table}, c.decoder);
        EXPECT_EQ(result.rows.at(0).at(0), c.text);
    }
    const Table gbk = read({.table = makeTable(3, {{"a", 'C', 6}}, {"\xC9\xE8x\xFF\xC9 "})},
                           TextDecoder::named(QStringLiteral("GBK")));
    EXPECT_EQ(gbk.rows.at(0).at(0), "设x\uFFFD\uFFFD");
}

TEST(Dbf, WrongCountsAndTruncatedFilesAreReported)
{
    const QByteArray table = makeTable(3, {{"a", 'C', 2}}, {"r1", "r2", "r3"});
    const qsizetype headerBytes = 65;
    struct Case
    {
        const char *what;
        QByteArray bytes;
        quint32 count;
        size_t rows;
        bool fails;
        bool early;
        bool more;
    };
    const Case cases[] = {
        {"right", table, 3, 3, false, false, false},
        {"too low", table, 1, 1, false, false, true},
        {"zero", table, 0, 0, false, false, true},
        {"too high, end mark", table, 9, 3, false, true, false},
        {"too high, no end mark", table.chopped(1), 0xFFFFFFFF, 3, true, false, false},
        {"cut at a record", table.chopped(4), 3, 2, true, false, false},
        {"cut in a record", table.chopped(2), 3, 2, true, false, false},
        {"no records", table.first(headerBytes), 3, 0, true, false, false},
        {"padding after the end", table + QByteArray(100, '\x1A'), 3, 3, false, false, false},
    };
    for (const Case &c : cases) {
        QByteArray bytes = c.bytes;
        storeLE(c.count, bytes.data() + 4);
        for (const qint64 piece : {-1, 1}) {
            const Table result = read({.table = bytes, .pieceBytes = piece});
            EXPECT_EQ(result.rows.size(), c.rows) << c.what;
            EXPECT_EQ(result.fault.has_value(), c.fails) << c.what;
            EXPECT_EQ(result.findings.endsBeforeCount, c.early) << c.what;
            EXPECT_EQ(result.findings.hasRecordsAfterCount, c.more) << c.what;
        }
    }
}

TEST(Dbf, ImpossibleHeadersAreRejected)
{
    const QByteArray good = makeTable(3, {{"a", 'C', 2}}, {"r1"});
    test::forEveryTruncation(good.first(65), [](const QByteArray &cut) {
        const Fault<Error> fault = read({.table = cut}).fault.value();
        EXPECT_EQ(fault.code, Error::ShortHeader);
        EXPECT_EQ(fault.detail.toStdString(), "it ends within its header");
    });
    struct Case
    {
        qsizetype at;
        quint16 value;
        const char *detail = "its header or record length is not possible";
    };
    for (const Case &c : {Case{10, 0}, Case{10, 2, "its fields do not fit its record length"},
                          Case{8, 31}, Case{8, 0}}) {
        QByteArray bad = good;
        storeLE(c.value, bad.data() + c.at);
        const Fault<Error> fault = read({.table = bad}).fault.value();
        EXPECT_EQ(fault.code, Error::BadHeader) << c.at << '=' << c.value;
        EXPECT_EQ(fault.detail.toStdString(), c.detail) << c.at << '=' << c.value;
    }
    QByteArray beyond = good;
    storeLE<quint16>(0xFFFF, beyond.data() + 8);
    EXPECT_EQ(read({.table = beyond}).fault->code, Error::ShortHeader);
    EXPECT_EQ(read({.table = makeTable(3, {}, {""})}).rows.size(), 1U); // no columns
    QByteArray longText = makeTable(0x30, {{"a", 'C', 44}}, {});
    longText[32 + 17] = 1; // 300 bytes
    storeLE<quint16>(301, longText.data() + 10);
    storeLE<quint32>(1, longText.data() + 4);
    EXPECT_EQ(read({.table = longText.chopped(1) + ' ' + QByteArray(299, 'x') + "y"})
                  .rows.at(0)
                  .at(0)
                  .size(),
              300U);
}

TEST(Memo, TextsOfEveryFormatReadAndBrokenOnesAreMissing)
{
    const QByteArray block1(512, '\0');
    const QByteArray dbase3 = block1 + QByteArray("first\x1A").leftJustified(512, 'j') +
                              QByteArray(600, 'x') + "\x1A\x1A";
    QByteArray dbase4 = QByteArray(20, '\0') + QByteArray("\x40\0", 2) + QByteArray(42, '\0');
    dbase4 += (QByteArray("\xFF\xFF\x08\0", 4) + le32(13) + "first").leftJustified(64, 'j');
    dbase4 += QByteArray("\xFF\xFF\x08\0", 4) + le32(608) + QByteArray(600, 'x');
    QByteArray foxpro = QByteArray("\0\0\0\0\0\0\0\x40", 8).leftJustified(64, '\0');
    foxpro += (QByteArray("\0\0\0\1\0\0\0\5", 8) + "first").leftJustified(64, 'j');
    foxpro += QByteArray("\0\0\0\1\0\0\x02\x58", 8) + QByteArray(600, 'x');
    const std::string longText(600, 'x');
    struct Case
    {
        uchar version;
        QByteArray memo;
    };
    QByteArray withJunk = dbase3; // dBase III does not use the place of the block size
    withJunk.replace(20, 2, "\x34\x12");
    for (const Case &c : {Case{0x83, dbase3}, Case{0x8B, dbase4}, Case{0xF5, foxpro},
                          Case{0x03, dbase3}, Case{0x03, withJunk}, Case{0x03, dbase4}}) {
        const QByteArray digits = makeTable(
            c.version, {{"m", 'M', 10}},
            {"         1", "         2", "          ", "0000000000", "99999     ", "   nonsens"});
        for (const auto access : {MemoFile::Access::Buffered, MemoFile::Access::InMemory}) {
            const Table table = read({.table = digits, .memo = c.memo, .access = access});
            EXPECT_EQ(table.rows,
                      (std::vector<Row>{{"first"}, {longText}, {"-"}, {"-"}, {"-"}, {"-"}}))
                << int(c.version);
            EXPECT_EQ(table.findings.unreadableMemos.count(), 2) << int(c.version);
        }
        const QByteArray binary =
            makeTable(c.version, {{"m", 'M', 4}}, {le32(2), le32(1), le32(-1)});
        const Table table = read({.table = binary, .memo = c.memo});
        EXPECT_EQ(table.rows, (std::vector<Row>{{longText}, {"first"}, {"-"}})) << int(c.version);
        const auto expectNoText = [&](const QByteArray &memo) {
            const Table cut = read({.table = binary, .memo = memo});
            EXPECT_FALSE(cut.fault);
            EXPECT_EQ(cut.rows.at(0).at(0), "-");
        };
        test::forEveryTruncation(c.memo.first(c.memo.size() - 1), expectNoText, 100);
        EXPECT_EQ(read({.table = binary}).rows,
                  (std::vector<Row>{{"-"}, {"-"}, {"-"}})); // no memo file
    }
}
