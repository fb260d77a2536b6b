// Files that others wrote, against what an independent program reads from them.
#include "base/bytes.h"
#include "base/number.h"
#include "base/utf.h"
#include "codecs/parquet/read/table_reader.h"
#include "tests/support/corpus.h"

#include <QRegularExpression>

using namespace corvanta;
using namespace corvanta::parquet;
using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString &name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

/// A line of the corpus' list.
struct ListedFile
{
    QString path;
    bool isSupported = false;
    bool isNested = false;
    qint64 rows = -1;
    QString golden;
};

std::vector<ListedFile> listedFiles()
{
    std::vector<ListedFile> files;
    for (const QByteArray &line : contentOf(test::corpusFile(u"MANIFEST.tsv"_s)).split('\n')) {
        const QString text = QString::fromUtf8(line);
        const QString path = text.section(u'\t', 0, 0);
        const QString facts = text.section(u'\t', -1);
        if (!path.startsWith("parquet/"_L1) || path.endsWith(".csv"_L1)) {
            continue;
        }
        ListedFile file{path, facts.contains("/RLE)=yes"_L1), facts.contains(" nested;"_L1)};
        const auto rows = QRegularExpression(u"DuckDB reads (\\d+) rows"_s).match(facts);
        file.rows = rows.hasMatch() ? rows.captured(1).toLongLong() : -1;
        const auto golden = QRegularExpression(u"golden=([^;]*)"_s).match(facts);
        if (golden.hasMatch()) {
            file.golden = path.section(u'/', 0, -2) + u'/' + golden.captured(1).trimmed();
        }
        files.push_back(file);
    }
    return files;
}

/// Fields of a CSV text; a null field is one without quotes and characters.
std::vector<std::vector<QByteArray>> csvRows(const QByteArray &csv)
{
    std::vector<std::vector<QByteArray>> rows(1);
    QByteArray field;
    bool isQuoted = false;
    bool wasQuoted = false;
    const auto endField = [&] {
        rows.back().push_back(
            field.isEmpty() && !wasQuoted ? QByteArray() : QByteArray(field.data(), field.size()));
        field.clear();
        wasQuoted = false;
    };
    for (qsizetype i = 0; i < csv.size(); ++i) {
        const char c = csv[i];
        if (c == '"' && isQuoted && i + 1 < csv.size() && csv[i + 1] == '"') {
            field += csv[++i];
        } else if (c == '"') {
            isQuoted = !isQuoted;
            wasQuoted = true;
        } else if (!isQuoted && (c == ',' || c == '\n')) {
            endField();
            if (c == '\n') {
                rows.emplace_back();
            }
        } else {
            field += c;
        }
    }
    if (!field.isEmpty() || !rows.back().empty()) {
        endField();
    } else {
        rows.pop_back();
    }
    return rows;
}

std::u16string textOf(QByteArray expected)
{
    if (expected.startsWith("0x")) {
        expected = QByteArray::fromHex(expected.mid(2));
    }
    while (expected.endsWith('\0')) {
        expected.chop(1);
    }
    std::u16string text(static_cast<size_t>(expected.size()), u'\0');
    text.resize(static_cast<size_t>(
        utf8OrLatin1ToUtf16(expected.constData(), expected.size(), text.data())));
    return text;
}

/// Whether a cell is what the expected field says. INT96 cells have their own tests.
bool isSame(const Column &column, const uchar *cell, const QByteArray &expected)
{
    switch (cellTypeOf(column.form)) {
    case CellType::Key: {
        const auto key = loadNative<quint32>(cell);
        return expected.isNull() ? cell::isMissingKey(key)
                                 : static_cast<qint32>(key) == expected.toInt();
    }
    case CellType::Double: {
        const auto value = loadNative<double>(cell);
        if (expected.isNull()) {
            return cell::isMissingDouble(value);
        }
        if (column.form == Form::DoubleFromInt96) {
            return !cell::isMissingDouble(value);
        }
        double wanted = 0;
        const bool isNumber =
            parseDouble(std::string_view(expected.constData(), size_t(expected.size())), &wanted);
        return isNumber && (value == wanted || (std::isnan(value) && std::isnan(wanted)));
    }
    case CellType::Text:
        break;
    }
    const cell::Text text = cell::readText(cell);
    return expected.isNull() ? text.isMissing()
                             : !text.isMissing() && text.view() == textOf(expected);
}

struct Outcome
{
    qint64 rows = 0;
    QString fault; ///< Of opening or of reading; empty at the end of the file.
};

template <class Check>
Outcome readAll(const QByteArray &bytes, const ReadOptions &options, int workers, Check &&check)
{
    MemorySource source(bytes);
    const auto reader = TableReader::open(source, options, workers);
    if (!reader) {
        return {0, reader.fault().detail};
    }
    std::vector<const uchar *> cells((*reader)->columns().size());
    for (;;) {
        const auto more = (*reader)->next(cells.data());
        if (!more || !*more) {
            return {(*reader)->rowsRead(), more ? QString() : more.fault().detail};
        }
        check((*reader)->columns(), cells);
    }
}

Outcome readAll(const QByteArray &bytes, const ReadOptions &options)
{
    return readAll(bytes, options, 2, [](const auto &, const auto &) {});
}

ReadOptions doubles()
{
    ReadOptions options;
    options.int64ToKey = false;
    return options;
}

ReadOptions everything()
{
    ReadOptions options;
    options.extendedEncodings = true;
    options.logicalTypes = true;
    options.pageChecksums = true;
    return options;
}

} // namespace

TEST(ParquetCorpus, SupportedFilesEqualTheirGoldenFiles)
{
    CORVANTA_NEEDS_CORPUS();
    int compared = 0;
    for (const ListedFile &file : listedFiles()) {
        if (!file.isSupported || file.golden.isEmpty()) {
            continue;
        }
        SCOPED_TRACE(file.path.toStdString());
        const auto golden = csvRows(contentOf(test::corpusFile(file.golden)));
        size_t row = 0;
        size_t wrong = 0;
        const auto check = [&](const std::vector<Column> &columns, const auto &cells) {
            ASSERT_LT(++row, golden.size());
            for (size_t i = 0; i < columns.size() && wrong < 3; ++i) {
                if (!isSame(columns[i], cells[i], golden[row].at(i))) {
                    ++wrong;
                    ADD_FAILURE() << "row " << row << ", " << columns[i].name.toStdString()
                                  << " is not '" << golden[row].at(i).constData() << "'";
                }
            }
        };
        const Outcome outcome =
            readAll(contentOf(test::corpusFile(file.path)), doubles(), 2, check);
        EXPECT_EQ(outcome.fault.toStdString(), "");
        EXPECT_EQ(row + 1, golden.size());
        ++compared;
    }
    EXPECT_GT(compared, 50);
}

TEST(ParquetCorpus, SupportedFilesReadCompletelyAndOthersFail)
{
    CORVANTA_NEEDS_CORPUS();
    for (const ListedFile &file : listedFiles()) {
        const Outcome outcome = readAll(contentOf(test::corpusFile(file.path)), ReadOptions());
        if (file.isSupported && file.rows >= 0) {
            EXPECT_EQ(outcome.fault.toStdString(), "") << file.path.toStdString();
            EXPECT_EQ(outcome.rows, file.rows) << file.path.toStdString();
        } else {
            const bool isWhole = outcome.fault.isEmpty();
            EXPECT_TRUE(!isWhole || file.rows <= 0) << file.path.toStdString();
            EXPECT_TRUE(isWhole || outcome.rows == 0) << file.path.toStdString();
        }
    }
}

TEST(ParquetCorpus, OptionsAcceptNewerFlatFiles)
{
    CORVANTA_NEEDS_CORPUS();
    for (const ListedFile &file : listedFiles()) {
        const Outcome outcome = readAll(contentOf(test::corpusFile(file.path)), everything());
        if (file.path.contains("corrupt-checksum"_L1)) {
            EXPECT_TRUE(outcome.fault.contains("does not have its checksum"_L1))
                << outcome.fault.toStdString();
        } else if (!file.isNested && file.rows > 0) {
            EXPECT_EQ(outcome.fault.toStdString(), "") << file.path.toStdString();
            EXPECT_EQ(outcome.rows, file.rows) << file.path.toStdString();
        }
    }
}
