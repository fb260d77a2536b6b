// The peer of json_nested: the lines of nested orders as CSV, with simdjson's On-Demand interface.
//     simdjson_peer orders.json peer.csv
#include <simdjson.h>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

using namespace simdjson;

namespace {

constexpr std::array<std::string_view, 13> kColumns{
    "order", "name",     "city",    "id",       "quantity", "price", "discount",
    "total", "lineCity", "product", "customer", "comment",  "day"};
constexpr std::array<std::string_view, 10> kLineMembers{
    "id",   "quantity", "price",    "discount", "total",
    "city", "product",  "customer", "comment",  "day"};
constexpr size_t kFlushBytes = 1 << 20;

void put(std::string &out, std::string_view text, bool isLast)
{
    if (text.find_first_of(",\"\r\n") != std::string_view::npos) {
        out += '"';
        for (const char c : text) {
            out.append(c == '"' ? 2 : 1, c);
        }
        out += '"';
    } else {
        out += text;
    }
    out += isLast ? '\n' : ',';
}

std::string_view textOf(ondemand::value value)
{
    if (value.type() == ondemand::json_type::string) {
        return value.get_string().value();
    }
    std::string_view token = value.raw_json_token();
    token = token.substr(0, token.find_last_not_of(" \r\n\t") + 1);
    return token;
}

void putLine(std::string &out, const std::array<std::string, 3> &head, ondemand::object line)
{
    std::array<std::string_view, kLineMembers.size()> texts;
    for (auto member : line) {
        const std::string_view key = member.unescaped_key();
        for (size_t i = 0; i < kLineMembers.size(); ++i) {
            if (key == kLineMembers[i]) {
                texts[i] = textOf(member.value());
                break;
            }
        }
    }
    for (const std::string &text : head) {
        put(out, text, false);
    }
    for (size_t i = 0; i < texts.size(); ++i) {
        put(out, texts[i], i + 1 == texts.size());
    }
}

} // namespace

int main(int, char **argv)
{
    FILE *const file = std::fopen(argv[2], "wb");
    ondemand::parser parser;
    const padded_string json = padded_string::load(argv[1]);
    ondemand::document document = parser.iterate(json);
    std::string out;
    for (size_t i = 0; i < kColumns.size(); ++i) {
        put(out, kColumns[i], i + 1 == kColumns.size());
    }
    for (ondemand::object order : document["orders"]) {
        std::array<std::string, 3> head;
        head[0] = textOf(order["order"]);
        ondemand::object buyer = order["buyer"];
        head[1] = textOf(buyer["name"]);
        head[2] = textOf(buyer["city"]);
        for (ondemand::object line : order["lines"]) {
            putLine(out, head, line);
        }
        if (out.size() > kFlushBytes) {
            std::fwrite(out.data(), 1, out.size(), file);
            out.clear();
        }
    }
    std::fwrite(out.data(), 1, out.size(), file);
    return std::fclose(file);
}
