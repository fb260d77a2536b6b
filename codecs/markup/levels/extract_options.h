// Options of the extraction of rows from a document.
#pragma once
#include "codecs/markup/tree/element_text.h"

#include <string>

namespace corvanta::markup {

/// How the names of an element's children are written to a cell.
enum class TagNames : quint8 {
    /// In document order, each run of equal names once: "a b[3] c ".
    Runs,
    /// Sorted, each name once with its total.
    Summary,
};

struct ExtractOptions
{
    /// Base of the indexes in paths.
    bool zeroBased = true;
    /// A column per level for the name of the occurrence.
    bool outputSubTags = false;
    /// Paths begin at the document; off: at its only element, if there is only one.
    bool keepRoot = true;
    TagNames tagNames = TagNames::Runs;
    /// Which items are text of an element.
    TextRule text;
    /// Include the text of sub-elements, with folded spaces.
    bool allText = false;
    /// An element without text has the names of its children instead.
    bool namesForText = false;
    /// A null of JSON gives a missing cell. Off: the text "null".
    bool nullIsMissing = false;
    /// Cells are 1 for an item that exists and 0 for one that does not.
    bool presence = false;
    /// Elements without text, sub-elements and attributes do not exist, but count in indexes.
    bool ignoreEmpty = false;
    /// More documents may follow in the same source, and can be read to decide how the first one is
    /// read. Off for texts that arrive one by one.
    bool canReadAhead = true;
    /// Count what the occurrences have and no item reads. Not for HTML, presence or allText.
    bool countsUnread = false;
    /// The occurrences called "tr" are rows of HTML tables: see SpanCells. Those of the first level
    /// may also be in the thead and tfoot of their container, and have at least one cell.
    bool expandSpans = false;
    /// Letters of the types of the first columns: K or F gives a number, U and no letter a text, J
    /// a text that is a value of JSON: quotes and escapes if it is a text in the file, else as it
    /// is there.
    std::string types;
    /// Occurrences of the first level to skip at the start of each document.
    int skip = 0;
};

} // namespace corvanta::markup
