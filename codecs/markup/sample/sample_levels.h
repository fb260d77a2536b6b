// Derives levels and items from the first records of a document.
#pragma once
#include "codecs/markup/levels/level.h"
#include "codecs/markup/tokens/tokenizer.h"
#include "codecs/markup/tree/element_text.h"

#include <QStringList>

namespace corvanta::markup {

/// A part of a document that can be read as a table.
struct SampledTable
{
    QString path;              ///< of the repeated element, or of the array that holds it
    qint64 rows = 0;           ///< number of rows in the sample
    qint64 values = 0;         ///< number of values in these rows
    std::vector<Level> levels; ///< at least one, with at least one item
    bool namesAreData = false; ///< its records are the members of an object, which have names
    QStringList leftOut;   ///< paths of repeated parts of the records that the levels do not read
    QStringList beginning; ///< names of the columns, or texts of the first row
    bool isPageTable = false; ///< it is a table of an HTML page
    int headRows = 0;         ///< number of first records that hold column names
};

struct SampledDocument
{
    std::vector<SampledTable> tables; ///< in document order
    size_t largest = 0;               ///< index of the first table with the most values

    /// Append a table and update `largest`.
    void add(SampledTable table);
};

struct SampleOptions
{
    int records = 100;     ///< number of records to read, at least 1
    TextRule text;         ///< which items are text of an element
    bool zeroBased = true; ///< base of the indexes in paths
};

/// Read up to `options.records` records and derive levels as docs/formats/markup.md describes. The
/// result has at least one table. Damaged data ends the sample without an error. The tokenizer must
/// be new; array items must have the empty name.
SampledDocument sampleDocument(MarkupTokenizer &tokenizer, const SampleOptions &options);

} // namespace corvanta::markup
