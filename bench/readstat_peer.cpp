// Writes a data set of SAS, SPSS or Stata as CSV with the library alone: the peer of "corvanta
// convert".
//
// Usage: readstat_peer INPUT OUTPUT. Numbers have the fewest digits that read back, texts are
// quoted where needed. One buffer, one write per megabyte.
#include <readstat.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr size_t kBufferBytes = 1 << 20;
constexpr size_t kNumberChars = 32;

char g_buffer[kBufferBytes];
size_t g_used = 0;
FILE *g_output = nullptr;
int g_columns = 0;

/// Make room for `n` bytes, of which a text has at most a few thousand.
char *room(size_t n)
{
    if (g_used + n > kBufferBytes) {
        std::fwrite(g_buffer, 1, g_used, g_output);
        g_used = 0;
    }
    return g_buffer + g_used;
}

void putText(const char *text)
{
    const size_t n = std::strlen(text);
    char *out = room(2 * n + 2);
    if (n != 0 && std::strpbrk(text, ",\"\n\r") == nullptr) {
        std::memcpy(out, text, n);
        g_used += n;
        return;
    }
    char *const begin = out;
    *out++ = '"';
    for (const char c : std::string_view(text, n)) {
        if (c == '"') {
            *out++ = '"';
        }
        *out++ = c;
    }
    *out++ = '"';
    g_used += static_cast<size_t>(out - begin);
}

void putNumber(double value)
{
    char *const out = room(kNumberChars);
    g_used += static_cast<size_t>(std::to_chars(out, out + kNumberChars, value).ptr - out);
}

void endCell(int index)
{
    *room(1) = index + 1 == g_columns ? '\n' : ',';
    ++g_used;
}

int onMetadata(readstat_metadata_t *metadata, void *)
{
    g_columns = readstat_get_var_count(metadata);
    return READSTAT_HANDLER_OK;
}

int onVariable(int index, readstat_variable_t *variable, const char *, void *)
{
    putText(readstat_variable_get_name(variable));
    endCell(index);
    return READSTAT_HANDLER_OK;
}

int onValue(int, readstat_variable_t *variable, readstat_value_t value, void *)
{
    if (readstat_value_is_missing(value, variable) != 0) {
        // An empty field.
    } else if (readstat_value_type_class(value) == READSTAT_TYPE_CLASS_STRING) {
        putText(readstat_string_value(value));
    } else {
        putNumber(readstat_double_value(value));
    }
    endCell(readstat_variable_get_index(variable));
    return READSTAT_HANDLER_OK;
}

readstat_error_t parse(readstat_parser_t *parser, const char *name)
{
    const std::string_view view = name;
    if (view.ends_with(".sav")) {
        return readstat_parse_sav(parser, name, nullptr);
    }
    if (view.ends_with(".dta")) {
        return readstat_parse_dta(parser, name, nullptr);
    }
    if (view.ends_with(".xpt")) {
        return readstat_parse_xport(parser, name, nullptr);
    }
    return readstat_parse_sas7bdat(parser, name, nullptr);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3 || (g_output = std::fopen(argv[2], "wb")) == nullptr) {
        std::fprintf(stderr, "usage: readstat_peer INPUT OUTPUT\n");
        return 2;
    }
    std::setvbuf(g_output, nullptr, _IONBF, 0);
    readstat_parser_t *const parser = readstat_parser_init();
    readstat_set_metadata_handler(parser, onMetadata);
    readstat_set_variable_handler(parser, onVariable);
    readstat_set_value_handler(parser, onValue);
    const readstat_error_t error = parse(parser, argv[1]);
    readstat_parser_free(parser);
    room(kBufferBytes);
    if (error != READSTAT_OK) {
        std::fprintf(stderr, "%s: %s\n", argv[1], readstat_error_message(error));
    }
    return error != READSTAT_OK || std::fclose(g_output) != 0 ? 1 : 0;
}
