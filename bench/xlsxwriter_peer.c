/* bench/xlsxwriter_peer.c
 * The same job on libxlsxwriter in its constant-memory mode: xlsxwriter_peer sales.csv out.xlsx
 *
 * Columns as make_sales prints them: numbers, texts, and the date in the last column as a real date cell. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <xlsxwriter.h>

enum { kColumns = 10, kFirstText = 5, kDate = 9, kLineBytes = 1 << 16 };

/* Cut the next field out of a line; quotes are undone in place. */
static char *next_field(char **at)
{
    char *begin = *at;
    char *out = begin;
    char *in = begin;
    if (*in == '"') {
        for (++in; *in != '\0'; ++in) {
            if (*in == '"' && *++in != '"') {
                break;
            }
            *out++ = *in;
        }
    } else {
        while (*in != ',' && *in != '\0' && *in != '\n') {
            *out++ = *in++;
        }
    }
    *at = *in == '\0' ? in : in + 1;
    *out = '\0';
    return begin;
}

int main(int argc, char **argv)
{
    lxw_workbook_options options = {0};
    options.constant_memory = LXW_TRUE;
    FILE *in = argc == 3 ? fopen(argv[1], "rb") : NULL;
    if (in == NULL) {
        fprintf(stderr, "usage: xlsxwriter_peer IN.csv OUT.xlsx\n");
        return 2;
    }
    lxw_workbook *book = workbook_new_opt(argv[2], &options);
    lxw_worksheet *sheet = workbook_add_worksheet(book, "Sheet1");
    lxw_format *date_format = workbook_add_format(book);
    format_set_num_format(date_format, "yyyy/mm/dd");
    char *line = malloc(kLineBytes);
    for (lxw_row_t row = 0; fgets(line, kLineBytes, in) != NULL; ++row) {
        char *at = line;
        for (lxw_col_t column = 0; column < kColumns; ++column) {
            const char *field = next_field(&at);
            lxw_datetime day = {0};
            if (*field == '\0') {
                continue;
            }
            if (row == 0 || (column >= kFirstText && column < kDate)) {
                worksheet_write_string(sheet, row, column, field, NULL);
            } else if (column == kDate && sscanf(field, "%d-%d-%d", &day.year, &day.month, &day.day) == 3) {
                worksheet_write_datetime(sheet, row, column, &day, date_format);
            } else {
                worksheet_write_number(sheet, row, column, strtod(field, NULL), NULL);
            }
        }
    }
    free(line);
    fclose(in);
    return workbook_close(book) == LXW_NO_ERROR ? 0 : 1;
}
