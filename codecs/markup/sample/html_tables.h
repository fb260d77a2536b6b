// codecs/markup/sample/html_tables.h
// The tables of an HTML page, for somebody who wants to choose one, and paths as browsers give
// them.
#pragma once
#include "codecs/markup/sample/sample_levels.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta::markup {

struct HtmlTable
{
    QString path;         ///< of the table, as a level's initialPath
    qint64 rows = 0;      ///< directly in the table (or in its tbody)
    qint64 headRows = 0;  ///< in thead and tfoot
    qint64 columns = 0;   ///< cells of the longest row; cells that span columns count once
    QStringList firstRow; ///< the texts of the first row's cells, shortened

    // What tells whether the first row holds names.
    bool isFirstInHead = false; ///< it is in thead
    bool hasHeadCell = false;   ///< it has a th
    bool hasDataCell = false;   ///< it has a td that is not empty
    bool hasDigits = false;     ///< in the first row
    bool digitsFollow = false;  ///< in the second row
};

/// List the tables of a page in document order, nested ones too: at most 10,000, no deeper than 256
/// elements. The tokenizer must be new and in HTML mode. A damaged page is judged by what comes
/// before the damage.
std::vector<HtmlTable> listTables(XMLTokenizer &tokenizer, bool zeroBased);

/// How to read the table's rows: a column per cell, named by the first row when that is a header.
SampledTable sampledTable(const HtmlTable &table, bool zeroBased);

/// The tables of a page, each as it can be read; empty when there are none.
SampledDocument sampleTables(XMLTokenizer &tokenizer, bool zeroBased);

/// A path without the "tbody" elements, which the tokenizer drops in HTML mode.
QString withoutTbody(QString path);

} // namespace corvanta::markup
