// The peer of writeSAS: a simple loop that reads the benchmark table and writes the same data set
// with the ReadStat library: readstat_write_peer SALES.csv OUT [sav|dta]. The default is a SAS data
// set. It also makes the inputs of the reading benchmarks.
//
// One thread, the table in memory, from_chars for numbers, output in pieces of 1 MiB. A first pass
// over the table counts its rows and measures its texts, which the library must know early.
#include <readstat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr size_t kColumns = 10;
constexpr size_t kNumbers = 5; // the first columns
constexpr size_t kBufferBytes = size_t(1) << 20;
using Record = std::array<std::string, kColumns>;

/// Parse one record. Returns the position after it.
const char *parse(const char *at, Record &record)
{
    for (std::string &field : record) {
        field.clear();
        if (*at == '"') {
            for (++at; *at != '"' || *++at == '"'; ++at) {
                field += *at;
            }
        } else {
            const char *const begin = at;
            while (*at != ',' && *at != '\n') {
                ++at;
            }
            field.assign(begin, at);
        }
        ++at;
    }
    return at;
}

ssize_t write(const void *bytes, size_t n, void *file)
{
    return static_cast<ssize_t>(std::fwrite(bytes, 1, n, static_cast<std::FILE *>(file)));
}

readstat_error_t insert(readstat_writer_t *writer, const readstat_variable_t *variable,
                        const std::string &field, bool isNumber)
{
    if (!isNumber) {
        return readstat_insert_string_value(writer, variable, field.c_str());
    }
    double value = 0;
    return field.empty() ? readstat_insert_missing_value(writer, variable)
                         : (std::from_chars(field.data(), field.data() + field.size(), value),
                            readstat_insert_double_value(writer, variable, value));
}

readstat_error_t begin(readstat_writer_t *writer, FILE *out, long rows, std::string_view format)
{
    if (format == "sav") {
        return readstat_begin_writing_sav(writer, out, rows);
    }
    return format == "dta" ? readstat_begin_writing_dta(writer, out, rows)
                           : readstat_begin_writing_sas7bdat(writer, out, rows);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3) {
        return 2;
    }
    std::ifstream in(argv[1], std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    const std::string table = content.str();
    Record names;
    Record record;
    const char *const rows = parse(table.data(), names);
    const char *const end = table.data() + table.size();
    std::array<size_t, kColumns> widths{};
    long count = 0;
    for (const char *at = rows; at < end; ++count) {
        at = parse(at, record);
        for (size_t i = 0; i < kColumns; ++i) {
            widths[i] = std::max({widths[i], record[i].size(), size_t(1)});
        }
    }
    std::FILE *const out = std::fopen(argv[2], "wb");
    std::vector<char> buffer(kBufferBytes);
    std::setvbuf(out, buffer.data(), _IOFBF, buffer.size());
    readstat_writer_t *const writer = readstat_writer_init();
    readstat_set_data_writer(writer, write);
    std::array<readstat_variable_t *, kColumns> variables{};
    for (size_t i = 0; i < kColumns; ++i) {
        const bool isNumber = i < kNumbers;
        variables[i] = readstat_add_variable(writer, names[i].c_str(),
                                             isNumber ? READSTAT_TYPE_DOUBLE : READSTAT_TYPE_STRING,
                                             isNumber ? 0 : widths[i]);
    }
    readstat_error_t error = begin(writer, out, count, argc > 3 ? argv[3] : "");
    for (const char *at = rows; at < end && error == READSTAT_OK;) {
        at = parse(at, record);
        error = readstat_begin_row(writer);
        for (size_t i = 0; i < kColumns && error == READSTAT_OK; ++i) {
            error = insert(writer, variables[i], record[i], i < kNumbers);
        }
        error = error == READSTAT_OK ? readstat_end_row(writer) : error;
    }
    error = error == READSTAT_OK ? readstat_end_writing(writer) : error;
    readstat_writer_free(writer);
    return std::fclose(out) == 0 && error == READSTAT_OK ? 0 : 1;
}
