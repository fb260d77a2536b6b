// Compiles levels whose items are pieces of XML (XML 1.0, Fifth Edition).
//
// Items contribute attributes, elements of single values, and values alone. The tags around them
// come from text items, so the output is well-formed only if the declared levels make it so.
// For example, items Text "<R", Attributes and Text "/>" write <R a="1" b="text"/> for a row.
// Threads: pure functions.
#pragma once
#include "codecs/compose/level_compiler.h"

#include <optional>

namespace corvanta::compose {

/// What an item writes. The values are the numbers in saved graphs.
enum class XmlItem : int {
    Text,           ///< its text
    Attributes,     ///< name="value" of all columns, with a blank before each
    SomeAttributes, ///< the same of the listed columns, the names without the prefix p1
    Subtags,        ///< <name>value</name> of all columns
    SomeSubtags,    ///< the same of the listed columns; p1 does not apply
    InQuotes,       ///< "value" of one column, escaped as an attribute
    InTag,          ///< the value of one column, escaped as the text of an element
    AsIs,           ///< the text of one column without escapes, for prepared XML
    SubLevel,       ///< the elements of the called level
};

struct XmlLayout
{
    /// Spaces before an element of the top level, from 0; two more per level below. When set,
    /// elements and subtags are written on lines of their own; line ends are LF.
    std::optional<int> indent = {};
    /// Write XML that every parser accepts, whatever names the columns have and the cells hold:
    /// names become valid (XML 1.0, 2.3) and distinct, texts get XmlStrictEscapes.
    bool wellFormed = false;
};

/// Compile `levels` (at least one), whose item types are XmlItems, for a table. The result does not
/// refer to `levels` or to the names of `columns`. Errors: those of LevelProblem but NoDictionary;
/// see LevelCompiler::compile().
LevelCompiler::Levels compileXmlLevels(const std::vector<WriteLevel> &levels,
                                       const RowView &columns, const XmlLayout &layout);

/// The level that is used when none is declared: an element <R .../> per row, with all columns or
/// those of `toWrite`, which the other choice ignores, as attributes.
std::vector<WriteLevel> defaultXmlLevels(bool writeAllColumns, const QStringList &toWrite);

} // namespace corvanta::compose
