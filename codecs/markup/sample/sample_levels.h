// codecs/markup/sample/sample_levels.h
// Derive levels and items from the first records of a document.
#pragma once
#include "codecs/markup/levels/level.h"
#include "codecs/markup/tokens/tokenizer.h"
#include "codecs/markup/tree/element_text.h"

#include <QStringList>

namespace corvanta::markup {

/// A part of a document that can be read as a table.
struct SampledTable
{
    QString path;              ///< of the element that repeats, or of the array that holds it
    qint64 rows = 0;           ///< in the sample
    qint64 values = 0;         ///< in them
    std::vector<Level> levels; ///< at least one, with at least one item
    bool namesAreData = false; ///< there are records with names, as in an object used as a map
    QStringList leftOut;       ///< repeated parts of the records that the levels do not read
    QStringList beginning;     ///< names of its columns, or texts of its first row
    bool isPageTable = false;  ///< a table of an HTML page
    int headRows = 0;          ///< records at the start that hold the names of the columns
};

struct SampledDocument
{
    std::vector<SampledTable> tables; ///< in the document's order
    size_t largest = 0;               ///< the one with most values; the first of several
    void add(SampledTable table);
};

struct SampleOptions
{
    int records = 100;
    TextRule text;
    bool zeroBased = true;
};

/// Look at up to `options.records` records and say how to read the document:
/// docs/formats/markup.md. There is always a table. Damaged data is judged by what comes before the
/// damage. The tokenizer must be new; array items must have the empty name.
SampledDocument sampleDocument(MarkupTokenizer &tokenizer, const SampleOptions &options);

} // namespace corvanta::markup
