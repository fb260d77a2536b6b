// Prints the table that all whole-program benchmarks read: make_sales ROWS [csv|xml|html|soup]
// > sales.csv
//
// xml: elements row with the attribute id and a child for each cell that is not missing. html: a
// page with one table. soup: the same without optional end tags, in mixed letter case. Ten columns:
// 2 whole numbers, 3 decimal numbers, 4 texts (non-ASCII in about two rows of five), 1 date as
// text; 2 to 5 % of the cells are missing. The same rows for the same count, on every machine.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

/// xorshift64*: the standard library's distributions differ between libraries.
class Random
{
public:
    std::uint64_t next()
    {
        m_state ^= m_state >> 12;
        m_state ^= m_state << 25;
        m_state ^= m_state >> 27;
        return m_state * 2685821657736338717ULL;
    }
    unsigned below(unsigned n) { return static_cast<unsigned>((next() >> 32) % n); }

private:
    std::uint64_t m_state = 88172645463325252ULL;
};

constexpr const char *kCities[] = {"Paris",  "Zürich", "São Paulo", "Berlin", "Kraków", "Reykjavík",
                                   "Lyon",   "Milano", "Praha",     "Genève", "Oslo",   "Łódź",
                                   "Madrid", "Nîmes",  "Bruxelles", "東京"};
constexpr const char *kProducts[] = {"Widget",      "Gear <large>", "Nut & bolt", "Kabel",
                                     "Schräubchen", "Pièce",        "Lamp",       "Desk",
                                     "Chair",       "Räder",        "Pump",       "Valve"};
constexpr const char *kNames[] = {"Anna",  "Björn", "Chloé", "Dmitri", "Elena", "François",
                                  "Greta", "Hans",  "Ines",  "Jürgen", "Karl",  "Løne",
                                  "Marie", "Noël",  "Olga",  "Peter"};

constexpr int kColumns = 10;
constexpr const char *kColumnNames[kColumns] = {"id",   "quantity", "price",    "discount", "total",
                                                "city", "product",  "customer", "comment",  "day"};

enum class Form { Csv, Xml, Html, Soup };

struct Row
{
    char cells[kColumns][96]; ///< Empty if the cell is missing.

    template <class... Values> void set(int column, const char *format, Values... values)
    {
        std::snprintf(cells[column], sizeof cells[column], format, values...);
    }
};

Row makeRow(long number, Random &random)
{
    Row row{};
    row.set(0, "%ld", number);
    if (random.below(100) >= 3) {
        row.set(1, "%u", random.below(1000));
    }
    const double price = random.below(10000000) / 100.0;
    const double discount = random.below(1000) / 3000.0;
    if (random.below(100) >= 2) {
        row.set(2, "%.2f", price);
    }
    if (random.below(100) >= 5) {
        row.set(3, "%.15g", discount);
    }
    row.set(4, "%.17g", price * (1 - discount));
    row.set(5, "%s", kCities[random.below(16)]);
    // Not as arguments, whose order of evaluation is not defined.
    const unsigned model = random.below(500);
    row.set(6, "%s %u", kProducts[random.below(12)], model);
    const char *const family = kNames[random.below(16)];
    row.set(7, "%s %s", kNames[random.below(16)], family);
    if (random.below(100) >= 4) {
        const unsigned week = random.below(52) + 1;
        row.set(8, "order %u, to be delivered in week %u", random.below(100000), week);
    }
    const unsigned day = random.below(28) + 1;
    const unsigned month = random.below(12) + 1;
    row.set(9, "%04u-%02u-%02u", 2015 + random.below(11), month, day);
    return row;
}

void printCsv(const Row &row)
{
    for (int i = 0; i < kColumns; ++i) {
        const bool isQuoted = std::strchr(row.cells[i], ',') != nullptr;
        std::printf(isQuoted ? "\"%s\"" : "%s", row.cells[i]);
        std::putchar(i + 1 < kColumns ? ',' : '\n');
    }
}

void printEscaped(const char *text)
{
    for (; *text != 0; ++text) {
        if (*text == '<' || *text == '&') {
            std::fputs(*text == '<' ? "&lt;" : "&amp;", stdout);
        } else {
            std::putchar(*text);
        }
    }
}

void printXml(const Row &row)
{
    std::printf("  <row id=\"%s\">\n", row.cells[0]);
    for (int i = 1; i < kColumns; ++i) {
        if (*row.cells[i] != 0) {
            std::printf("    <%s>", kColumnNames[i]);
            printEscaped(row.cells[i]);
            std::printf("</%s>\n", kColumnNames[i]);
        }
    }
    std::puts("  </row>");
}

void printHtml(const Row &row)
{
    std::fputs("<tr>", stdout);
    for (const auto &cell : row.cells) {
        std::fputs("<td>", stdout);
        printEscaped(cell);
        std::fputs("</td>", stdout);
    }
    std::puts("</tr>");
}

void printSoup(const Row &row)
{
    std::fputs("<TR>", stdout);
    for (const auto &cell : row.cells) {
        std::fputs("<td>", stdout);
        printEscaped(cell);
    }
    std::putchar('\n');
}

/// The text before the rows.
void printHead(Form form)
{
    if (form == Form::Xml) {
        std::puts("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<sales>");
        return;
    }
    const bool isPage = form == Form::Html || form == Form::Soup;
    if (isPage) {
        std::fputs("<!DOCTYPE html>\n<html><head><meta "
                   "charset=\"utf-8\"><title>Sales</title></head>\n<body><h1>Sales</h1>"
                   "\n<table class=\"list\"><thead><tr>",
                   stdout);
    }
    for (int i = 0; i < kColumns; ++i) {
        const char *const end = i + 1 < kColumns ? "," : "\n";
        std::printf(isPage ? "<th>%s</th>" : "%s%s", kColumnNames[i], end);
    }
    std::fputs(isPage ? "</tr></thead>\n<tbody>\n" : "", stdout);
}

} // namespace

int main(int argc, char **argv)
{
    const long rows = argc > 1 ? std::atol(argv[1]) : 1000000;
    const char kind = argc > 2 ? *argv[2] : 'c';
    const Form form = kind == 'x'   ? Form::Xml
                      : kind == 'h' ? Form::Html
                      : kind == 's' ? Form::Soup
                                    : Form::Csv;
    Random random;
    printHead(form);
    for (long i = 1; i <= rows; ++i) {
        const Row row = makeRow(i, random);
        const auto print = form == Form::Xml    ? printXml
                           : form == Form::Html ? printHtml
                           : form == Form::Soup ? printSoup
                                                : printCsv;
        print(row);
    }
    std::fputs(form == Form::Xml    ? "</sales>\n"
               : form == Form::Html ? "</tbody></table></body></html>\n"
               : form == Form::Soup ? "</TABLE >\n"
                                    : "",
               stdout);
    return 0;
}
