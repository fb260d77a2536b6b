// The peer of writeJSON and writeXML: a simple loop that reads the benchmark table and formats the
// same rows: text_peer json|xml SALES.csv OUT
//
// One thread, the table in memory, from_chars and to_chars for numbers, output in pieces of 1 MiB.
// The output is the same byte for byte.
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>

namespace {

constexpr size_t kColumns = 10;
constexpr size_t kBufferBytes = size_t(1) << 20;
enum class Kind { Key, Float, Text };
constexpr std::array<Kind, kColumns> kKinds = {Kind::Key,   Kind::Key,  Kind::Float, Kind::Float,
                                               Kind::Float, Kind::Text, Kind::Text,  Kind::Text,
                                               Kind::Text,  Kind::Text};

struct Field
{
    std::string text;
    bool isMissing = true;
};
using Record = std::array<Field, kColumns>;

/// Parse one record. Returns the position after it.
const char *parse(const char *at, Record &record)
{
    for (Field &field : record) {
        field.text.clear();
        const bool isQuoted = *at == '"';
        field.isMissing = !isQuoted && (*at == ',' || *at == '\n');
        if (isQuoted) {
            for (++at; *at != '"' || *++at == '"'; ++at) {
                field.text += *at;
            }
        } else {
            while (*at != ',' && *at != '\n') {
                field.text += *at++;
            }
        }
        ++at;
    }
    return at;
}

void appendNumber(std::string &out, Kind kind, const std::string &text)
{
    std::array<char, 32> digits{};
    char *end = nullptr;
    if (kind == Kind::Key) {
        unsigned key = 0;
        std::from_chars(text.data(), text.data() + text.size(), key);
        end = std::to_chars(digits.data(), digits.data() + digits.size(), key).ptr;
    } else {
        double value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                            std::chars_format::general, 6)
                  .ptr;
    }
    out.append(digits.data(), end);
}

void appendJson(std::string &out, std::string_view text)
{
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
        }
        out += c;
    }
    out += '"';
}

void appendXml(std::string &out, std::string_view text)
{
    for (const char c : text) {
        if (c == '&') {
            out += "&amp;";
        } else if (c == '\'') {
            out += "&quot;";
        } else {
            out += c;
        }
    }
}

void appendJsonRow(std::string &out, const Record &header, const Record &record, bool isFirst)
{
    out += isFirst ? "{" : ",{";
    bool wrote = false;
    for (size_t i = 0; i < kColumns; ++i) {
        if (record[i].isMissing) {
            continue;
        }
        out += wrote ? ",\"" : "\"";
        out += header[i].text;
        out += "\":";
        kKinds[i] == Kind::Text ? appendJson(out, record[i].text)
                                : appendNumber(out, kKinds[i], record[i].text);
        wrote = true;
    }
    out += '}';
}

void appendXmlRow(std::string &out, const Record &header, const Record &record)
{
    out += "<R ";
    for (size_t i = 0; i < kColumns; ++i) {
        if (record[i].isMissing) {
            continue;
        }
        out += ' ';
        out += header[i].text;
        out += "=\"";
        kKinds[i] == Kind::Text ? appendXml(out, record[i].text)
                                : appendNumber(out, kKinds[i], record[i].text);
        out += '"';
    }
    out += "/>";
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        return 2;
    }
    const bool isJson = std::strcmp(argv[1], "json") == 0;
    std::ifstream in(argv[2], std::ios::binary | std::ios::ate);
    std::ofstream file(argv[3], std::ios::binary);
    std::string table(static_cast<size_t>(in.tellg()), '\0');
    in.seekg(0);
    in.read(table.data(), static_cast<std::streamsize>(table.size()));
    Record header;
    Record record;
    const char *at = parse(table.c_str(), header);
    std::string out = isJson ? "[" : "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<data>";
    bool isFirst = true;
    while (at < table.data() + table.size()) {
        at = parse(at, record);
        isJson ? appendJsonRow(out, header, record, isFirst) : appendXmlRow(out, header, record);
        isFirst = false;
        if (out.size() >= kBufferBytes) {
            file.write(out.data(), static_cast<std::streamsize>(out.size()));
            out.clear();
        }
    }
    out += isJson ? "]" : "</data>";
    file.write(out.data(), static_cast<std::streamsize>(out.size()));
    file.close();
    return file ? 0 : 1;
}
