// Lists the tables of an HTML page, so that one can be chosen, and adapts paths from browsers.
#pragma once
#include "codecs/markup/sample/sample_levels.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta::markup {

/// A table of a page.
struct HtmlTable
{
    /// Of the table, usable as Level::initialPath.
    QString path;
    /// Rows directly in the table, or in its tbody.
    qint64 rows = 0;
    /// Rows in thead and tfoot.
    qint64 headRows = 0;
    /// Cells of the longest row; a cell that spans columns counts once, or with Spans::Expanded
    /// once for each column.
    qint64 columns = 0;
    /// Texts of the cells of the first row, truncated.
    QStringList firstRow;

    // Evidence whether the first row holds names.
    /// The first row is in thead.
    bool isFirstInHead = false;
    /// The first row has a th.
    bool hasHeadCell = false;
    /// The first row has a td that is not empty.
    bool hasDataCell = false;
    /// The first row has digits.
    bool hasDigits = false;
    /// The second row has digits.
    bool digitsFollow = false;

    /// The table was listed with Spans::Expanded. `rows` then are all rows that have cells,
    /// `headRows` the first of them that hold the names of the columns, and `firstRow` has the
    /// joined names by column.
    bool isExpanded = false;
};

/// What a cell is that spans columns or rows.
enum class Spans : quint8 {
    /// One cell, as it is written.
    Ignored,
    /// A cell in each of them. Rows in thead and tfoot are rows of the table.
    Expanded,
};

/// List the tables of a page in document order, including nested ones: at most 10,000, at most 256
/// elements deep. The tokenizer must be new and in HTML mode. Damage ends the list without an
/// error.
std::vector<HtmlTable> listTables(XMLTokenizer &tokenizer, bool zeroBased,
                                  Spans spans = Spans::Ignored);

/// The level that reads a table: a column per cell, named by the first row if that is a header.
SampledTable sampledTable(const HtmlTable &table, bool zeroBased);

/// The tables of a page with the levels that read them. May be empty.
SampledDocument sampleTables(XMLTokenizer &tokenizer, bool zeroBased, Spans spans);

/// Remove the "tbody" steps from a path, because the tokenizer drops these elements in HTML mode.
QString withoutTbody(QString path);

} // namespace corvanta::markup
