// Derives levels and items from the first records of a document.
#pragma once
#include "base/occurrences.h"
#include "codecs/markup/levels/level.h"
#include "codecs/markup/sample/related_tables.h"
#include "codecs/markup/tokens/tokenizer.h"
#include "codecs/markup/tree/element_text.h"

#include <QStringList>

namespace corvanta::markup {

/// A part of a document that can be read as a table.
struct SampledTable
{
    /// Of the repeated element, or of the array that holds it.
    QString path;
    /// Number of rows in the sample.
    qint64 rows = 0;
    /// Number of values in these rows.
    qint64 values = 0;
    /// At least one, with at least one item.
    std::vector<Level> levels;
    /// Its records are the members of an object, which have names.
    bool namesAreData = false;
    /// Paths of repeated parts of the records that the levels do not read.
    QStringList leftOut;
    /// Names of the columns, or texts of the first row.
    QStringList beginning;
    /// It is a table of an HTML page.
    bool isPageTable = false;
    /// Number of first records that hold column names.
    int headRows = 0;
};

struct SampledDocument
{
    /// In document order.
    std::vector<SampledTable> tables;
    /// The same document without repeated values; a parent comes before its children.
    std::vector<RelatedTable> related;
    /// Index of the first table with the most values.
    size_t largest = 0;

    // What no table reads, or reads with a doubt.

    /// Paths of values that are not in the records of any table.
    QStringList outside;
    /// Names for which there is another one that differs only in letter case. Paths distinguish
    /// them by their order in a record.
    QStringList sameNames;
    /// Elements whose names a path cannot express; the place is the first name.
    Occurrences unnameable;
    /// Elements beyond the limits of a sample; the place is the first name.
    Occurrences beyondLimits;

    /// Append a table and update `largest`.
    void add(SampledTable table);
};

struct SampleOptions
{
    /// Number of records to read, at least 1.
    int records = 100;
    /// Which items are text of an element.
    TextRule text;
    /// Base of the indexes in paths.
    bool zeroBased = true;
};

/// Read up to `options.records` records and derive levels as docs/formats/markup.md describes. The
/// result has at least one table. Damaged data ends the sample without an error. The tokenizer must
/// be new; array items must have the empty name.
SampledDocument sampleDocument(MarkupTokenizer &tokenizer, const SampleOptions &options);

} // namespace corvanta::markup
