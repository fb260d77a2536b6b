// The tables of pages: what is listed, and the rows that the level of a table gives.
#include "base/cell.h"
#include "codecs/markup/levels/level_extractor.h"
#include "codecs/markup/sample/html_tables.h"
#include "tests/support/corpus.h"

#include <gtest/gtest.h>

#include <memory>

using namespace corvanta;
using namespace corvanta::markup;
using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<XMLTokenizer> pageTokenizer(ByteSource &source)
{
    auto tokenizer = std::make_unique<XMLTokenizer>(source, 0);
    tokenizer->setOptions({true, true, false, true});
    return tokenizer;
}

std::vector<HtmlTable> tablesOf(const QByteArray &page, bool zeroBased = false)
{
    MemorySource source(page);
    return listTables(*pageTokenizer(source), zeroBased);
}

QString describe(const std::vector<HtmlTable> &tables)
{
    QStringList texts;
    for (const HtmlTable &table : tables) {
        texts << u"%1 %2+%3x%4 %5"_s.arg(table.path, QString::number(table.headRows),
                                         QString::number(table.rows),
                                         QString::number(table.columns), table.firstRow.join(u','));
    }
    return texts.join(u'\n');
}

/// Goldens that do not apply: their program counts the rows of inner tables with those of the
/// outer one, or took UTF-8 for Latin-1.
const QStringList kOtherwise{u"hukumusume.html.table1.csv"_s, u"wikipedia.html.table3.csv"_s,
                             u"unicode_1.html.table1.csv"_s};

/// The texts of a table's cells, row by row: head rows first.
QList<QStringList> rowsOf(const QByteArray &page, const HtmlTable &table)
{
    QList<QStringList> rows;
    ExtractOptions options;
    options.zeroBased = false;
    options.allText = true;
    options.text.html = true;
    for (const QString &part : {u"/thead"_s, u""_s}) {
        Level level = sampledTable(table, false).levels.front();
        level.initialPath = table.path + part;
        MemorySource source(page);
        const auto tokenizer = pageTokenizer(source);
        LevelExtractor extractor({level}, options);
        extractor.beginDocument(*tokenizer);
        BlockArena arena;
        while (*extractor.next(arena)) {
            QStringList &row = rows.emplace_back();
            for (const uchar *cell : extractor.cells()) {
                row << QString::fromStdU16String(std::u16string(cell::readText(cell).view()));
            }
        }
    }
    return rows;
}

/// The records of a CSV file.
QList<QStringList> readCsv(const QString &name)
{
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    const QString text = QString::fromUtf8(file.readAll());
    QList<QStringList> rows{{u""_s}};
    bool quoted = false;
    for (const QChar c : text) {
        if (c == u'"') {
            quoted = !quoted;
        } else if (c == u'\n' && !quoted) {
            rows << QStringList{u""_s};
        } else if (c == u',' && !quoted) {
            rows.back() << u""_s;
        } else if (c != u'\r') {
            rows.back().back() += c;
        }
    }
    rows.removeLast();
    return rows;
}

/// Without blanks, quotes and empty cells at the end, in which the program that wrote the goldens
/// differs.
QString comparable(const QList<QStringList> &rows)
{
    QStringList lines;
    for (QStringList row : rows) {
        while (!row.isEmpty() && row.back().isEmpty()) {
            row.removeLast();
        }
        lines << row.join(u'|').remove(u' ').remove(u'"').remove(QChar(0xA0));
    }
    return lines.join(u'\n');
}

} // namespace

TEST(HtmlTables, AreListedWithPathsAndSizes)
{
    const QByteArray page =
        "<HTML><body><table><tr><td>a<td></tr></table><div/><div><table><thead><tr><th>Na&amp;me</"
        "th>"
        "<th>N <b>2</b></th></tr></thead><tbody><tr><td>1</td></tr><tr><td><TABLE "
        "id=x></TABLE></td><td>"
        "</td><td></td></tr></tbody></table></div></body></HTML>";
    EXPECT_EQ(describe(tablesOf(page)).toStdString(),
              "html/body/table 0+1x2 a,\n"
              "html/body/div[2]/table 1+2x3 Na&me,N 2\n"
              "html/body/div[2]/table/tr[2]/td/table 0+0x0 ");
    const HtmlTable second = tablesOf(page, true).at(1);
    EXPECT_EQ(second.path, u"html/body/div[1]/table");
    const Level level = sampledTable(second, true).levels.at(0);
    ASSERT_EQ(level.items.size(), 3U);
    EXPECT_EQ(level.items[1].path, u"[1]");
    EXPECT_EQ(level.items[1].name, u"N 2");
    EXPECT_EQ(level.items[2].name, u"column 3");
}

// The names of the columns: of which tables they are the first row, and whether that row is passed
// over.
TEST(HtmlTables, HaveColumnNamesFromTheFirstRow)
{
    struct NamesCase
    {
        const char *rows;
        const char *table; ///< "path: rows, head rows: names"
    };
    for (const auto &[rows, table] : {
             NamesCase{"<tr><th>a<th></tr><tr><td>1<td>2", "t 1 1: a|column 2"},
             NamesCase{"<tr><td><th>a</tr><tr><td>1<td>2", "t 1 1: column 1|a"},
             NamesCase{"<tr><th>key<td>1</tr><tr><th>k<td>2", "t 2 0: column 1|column 2"},
             NamesCase{"<tr><td>a<td>b</tr><tr><td>1<td>c", "t 1 1: a|b"},
             NamesCase{"<tr><td>a<td>b</tr><tr><td>c<td>d", "t 2 0: column 1|column 2"},
             NamesCase{"<tr><td>a<td>2</tr><tr><td>1<td>c", "t 2 0: column 1|column 2"},
             NamesCase{"<tr><td><td>a</tr><tr><td>b<td>", "t 1 1: column 1|a"},
             NamesCase{"<tr><td>a</tr><tr><td>1", "t 2 0: column 1"},
             NamesCase{"<thead><tr><td>a<td>a</thead><tr><td>1<td>2", "t 1 0: a|a_2"},
             NamesCase{"<thead><tr><th>a</tr><tr><th>b</thead>", "t/thead 1 1: a"},
         }) {
        QByteArray page = "<t>" + QByteArray(rows) + "</t>";
        page.replace("t>", "table>").replace("<td>", "</td><td>").replace("<th>", "</th><th>");
        MemorySource source(page);
        const SampledTable found =
            sampleTables(*pageTokenizer(source), true, Spans::Ignored).tables.at(0);
        QStringList names;
        for (const LevelItem &item : found.levels.at(0).items) {
            names << item.name;
        }
        const QString text =
            u"%1 %2 %3: %4"_s.arg(found.levels[0].initialPath, QString::number(found.rows),
                                  QString::number(found.headRows), names.join(u'|'));
        EXPECT_EQ(QString(text).replace(u"table"_s, u"t"_s).toStdString(), table) << rows;
    }
}

// Elements nested far deeper than any page: neither the list nor its paths may grow with the
// square.
TEST(HtmlTables, AreListedInDeepPages)
{
    QByteArray page;
    for (int i = 0; i < 100'000; ++i) {
        page += "<table><tr><td>";
    }
    EXPECT_EQ(tablesOf(page).size(), 85U);
}

TEST(HtmlTables, AcceptPathsWithTbody)
{
    for (const auto &[path, without] :
         {std::pair{u"/html/body/table/tbody/tr[1]"_s, u"/html/body/table/tr[1]"_s},
          {u"tbody/tr"_s, u"tr"_s},
          {u"table/tbody"_s, u"table"_s},
          {u"a/tbody[2]/b"_s, u"a/tbody[2]/b"_s}}) {
        EXPECT_EQ(withoutTbody(path), without);
    }
}

// Whole pages as another program read them.
TEST(HtmlTables, AreReadFromRealPages)
{
    CORVANTA_NEEDS_CORPUS();
    for (const auto &folder : {u"html"_s, u"html/small"_s, u"html/pages"_s}) {
        const QDir goldens(test::corpusFile(folder + u"/golden"_s));
        for (const QString &golden : goldens.entryList({u"*.csv"_s})) {
            if (kOtherwise.contains(golden)) {
                continue;
            }
            const qsizetype at = golden.indexOf(u".table"_s);
            QFile file(goldens.filePath(u"../"_s + golden.first(at)));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray page = file.readAll();
            const auto number = golden.sliced(at + 6).chopped(4).toULongLong();
            const std::vector<HtmlTable> tables = tablesOf(page);
            ASSERT_GE(tables.size(), number) << golden.toStdString();
            EXPECT_EQ(comparable(rowsOf(page, tables[number - 1])).toStdString(),
                      comparable(readCsv(goldens.filePath(golden))).toStdString())
                << golden.toStdString() << '\n'
                << describe(tables).toStdString();
        }
    }
}
