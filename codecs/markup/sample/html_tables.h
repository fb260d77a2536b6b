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
    QString path;         ///< of the table, usable as Level::initialPath
    qint64 rows = 0;      ///< rows directly in the table, or in its tbody
    qint64 headRows = 0;  ///< rows in thead and tfoot
    qint64 columns = 0;   ///< cells of the longest row; a cell that spans columns counts once
    QStringList firstRow; ///< texts of the cells of the first row, truncated

    // Evidence whether the first row holds names.
    bool isFirstInHead = false; ///< the first row is in thead
    bool hasHeadCell = false;   ///< the first row has a th
    bool hasDataCell = false;   ///< the first row has a td that is not empty
    bool hasDigits = false;     ///< the first row has digits
    bool digitsFollow = false;  ///< the second row has digits
};

/// List the tables of a page in document order, including nested ones: at most 10,000, at most 256
/// elements deep. The tokenizer must be new and in HTML mode. Damage ends the list without an
/// error.
std::vector<HtmlTable> listTables(XMLTokenizer &tokenizer, bool zeroBased);

/// The level that reads a table: a column per cell, named by the first row if that is a header.
SampledTable sampledTable(const HtmlTable &table, bool zeroBased);

/// The tables of a page with the levels that read them. May be empty.
SampledDocument sampleTables(XMLTokenizer &tokenizer, bool zeroBased);

/// Remove the "tbody" steps from a path, because the tokenizer drops these elements in HTML mode.
QString withoutTbody(QString path);

} // namespace corvanta::markup
