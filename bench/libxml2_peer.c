/* What a C program on libxml2 takes for the same rows: libxml2_peer xml|html INPUT OUTPUT.csv
 *
 * xml: SAX2, the elements called row with their attribute id and nine children. html: the page's tree, the
 * cells of all rows with the text in them. */
#include <libxml/HTMLparser.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { kColumns = 10, kCellBytes = 65536 };

static const char *const kNames[kColumns] = {"id",   "quantity", "price",    "discount", "total",
                                             "city", "product",  "customer", "comment",  "day"};

struct Row
{
    FILE *out;
    char *cells[kColumns];
    int sizes[kColumns];
    int current; /* column that takes text; -1: none */
};

static void putCell(FILE *out, const char *text, int size)
{
    if (memchr(text, ',', size) == NULL && memchr(text, '"', size) == NULL && memchr(text, '\n', size) == NULL) {
        fwrite_unlocked(text, 1, size, out);
        return;
    }
    putc_unlocked('"', out);
    for (int i = 0; i < size; ++i) {
        if (text[i] == '"') {
            putc_unlocked('"', out);
        }
        putc_unlocked(text[i], out);
    }
    putc_unlocked('"', out);
}

static void addText(struct Row *row, const char *text, int size)
{
    if (row->current >= 0 && row->sizes[row->current] + size <= kCellBytes) {
        memcpy(row->cells[row->current] + row->sizes[row->current], text, size);
        row->sizes[row->current] += size;
    }
}

static void startElement(void *data, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri, int namespaces,
                         const xmlChar **names, int attributes, int defaults, const xmlChar **values)
{
    struct Row *row = data;
    (void)prefix, (void)uri, (void)namespaces, (void)names, (void)defaults;
    if (strcmp((const char *)name, "row") == 0) {
        memset(row->sizes, 0, sizeof row->sizes);
        row->current = 0;
        for (int i = 0; i < attributes; ++i) {
            if (strcmp((const char *)values[5 * i], "id") == 0) {
                addText(row, (const char *)values[5 * i + 3], (int)(values[5 * i + 4] - values[5 * i + 3]));
            }
        }
        row->current = -1;
        return;
    }
    row->current = -1;
    for (int i = 1; i < kColumns; ++i) {
        if (strcmp((const char *)name, kNames[i]) == 0) {
            row->current = i;
        }
    }
}

static void endElement(void *data, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri)
{
    struct Row *row = data;
    (void)prefix, (void)uri;
    row->current = -1;
    if (strcmp((const char *)name, "row") == 0) {
        for (int i = 0; i < kColumns; ++i) {
            putCell(row->out, row->cells[i], row->sizes[i]);
            putc_unlocked(i + 1 < kColumns ? ',' : '\n', row->out);
        }
    }
}

static void characters(void *data, const xmlChar *text, int size)
{
    addText(data, (const char *)text, size);
}

static int readXml(const char *input, FILE *out)
{
    struct Row row = {.out = out, .current = -1};
    for (int i = 0; i < kColumns; ++i) {
        row.cells[i] = malloc(kCellBytes);
        fprintf(out, "%s%c", kNames[i], i + 1 < kColumns ? ',' : '\n');
    }
    xmlSAXHandler handler;
    memset(&handler, 0, sizeof handler);
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = startElement;
    handler.endElementNs = endElement;
    handler.characters = characters;
    return xmlSAXUserParseFile(&handler, &row, input);
}

static void readRows(xmlNodePtr node, FILE *out)
{
    for (; node != NULL; node = node->next) {
        if (node->type == XML_ELEMENT_NODE && strcmp((const char *)node->name, "tr") == 0) {
            for (xmlNodePtr cell = xmlFirstElementChild(node); cell != NULL;) {
                xmlChar *text = xmlNodeGetContent(cell);
                putCell(out, (const char *)text, (int)strlen((const char *)text));
                xmlFree(text);
                cell = xmlNextElementSibling(cell);
                putc_unlocked(cell != NULL ? ',' : '\n', out);
            }
        } else {
            readRows(node->children, out);
        }
    }
}

int main(int argc, char **argv)
{
    FILE *out = argc == 4 ? fopen(argv[3], "wb") : NULL;
    if (out == NULL) {
        return 2;
    }
    int status = 0;
    if (strcmp(argv[1], "xml") == 0) {
        status = readXml(argv[2], out);
    } else {
        htmlDocPtr page = htmlReadFile(argv[2], NULL, HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING);
        status = page == NULL;
        readRows(page == NULL ? NULL : xmlDocGetRootElement(page), out);
        xmlFreeDoc(page);
    }
    return fclose(out) != 0 || status != 0;
}
