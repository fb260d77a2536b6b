// Options of the extraction of rows from a document.
#pragma once
#include "codecs/markup/tree/element_text.h"

namespace corvanta::markup {

/// How the names of an element's children are written to a cell.
enum class TagNames : quint8 {
    Runs,    ///< in document order, each run of equal names once: "a b[3] c "
    Summary, ///< sorted, each name once with its total
};

struct ExtractOptions
{
    bool zeroBased = true;      ///< base of the indexes in paths
    bool outputSubTags = false; ///< a column per level for the name of the occurrence
    bool keepRoot = true; ///< paths begin at the document; off: at its only element, if there is
                          ///< only one
    TagNames tagNames = TagNames::Runs;
    TextRule text;             ///< which items are text of an element
    bool allText = false;      ///< include the text of sub-elements, with folded spaces
    bool namesForText = false; ///< an element without text has the names of its children instead
    bool presence = false;     ///< cells are 1 for an item that exists and 0 for one that does not
    bool ignoreEmpty = false;  ///< elements without text, sub-elements and attributes do not exist,
                               ///< but count in indexes
    int skip = 0; ///< occurrences of the first level to skip at the start of each document
};

} // namespace corvanta::markup
