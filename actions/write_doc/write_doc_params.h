// The parameters of writeDoc.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

struct WriteDocParams
{
    // Names of input columns: each row names its own document and template.
    QString output = QStringLiteral("wordFile");
    QString templateColumn = QStringLiteral("templateFile");
    /// Line ends in texts become line breaks of a Word document.
    bool processCR = true;
    /// The two characters backslash and n become a line break.
    bool processLF = false;
    /// Images are stored in the document; off: the document links to the image files.
    bool inlineImg = true;
    /// Markers are found although runs divide them, or although they hold escaped characters.
    bool joinRuns = false;
    /// Markers are also found outside of the body and the slides, as in headers and charts.
    bool allParts = false;
    /// Pictures keep their ratio inside the box of the placeholder.
    bool fitImages = false;
    /// Line breaks in Word documents are outside of text elements.
    bool strictMarkup = false;
    /// Columns whose texts replace the markers %NAME%.
    QStringList textColumns;
    /// Columns with names of image files, for pictures whose targets contain %NAME%.
    QStringList imageColumns;
};

/// Attributes of `writeDoc`, then its child elements.
const ParamTable<WriteDocParams> &writeDocParamTable();

} // namespace corvanta
