// Compiles levels whose items are pieces of JSON (RFC 8259).
//
// Items contribute values, keys and the commas between them. Brackets, braces and the names of
// arrays come from text items, so the output is valid JSON only if the declared levels make it so.
// For example, items Text "{", Dictionary and Text "}" write {"a":1,"b":"text"} for a row.
// Threads: pure functions.
#pragma once
#include "codecs/compose/level_compiler.h"

namespace corvanta::compose {

/// What an item writes. The values are the numbers in saved graphs.
enum class JsonItem : int {
    Text,           ///< its text
    Dictionary,     ///< "name":value of all columns
    SomeDictionary, ///< "name":value of the listed columns, the names without the prefix p1
    Array,          ///< the values of all columns
    SomeArray,      ///< the values of the listed columns
    SubLevel,       ///< the elements of the called level
    Comma,          ///< a comma, if the dictionary directly before the item wrote a pair
    AsIs,           ///< the text of one column without quotes and escapes, for prepared JSON
};

/// Text columns that are not written as texts with quotes.
struct JsonColumns
{
    QStringList bare = {}; ///< see ComposeOperation::Column::isBare
    QStringList json = {}; ///< their texts are values of JSON
};

/// Compile `levels` (at least one), whose item types are JsonItems, for a table. `form` is the
/// escaping of texts, one of the three Json forms; names of columns get the strict escapes only
/// with JsonStrict. The result does not refer to `levels` or to the names of `columns`. Errors: all
/// of LevelProblem; see LevelCompiler::compile().
LevelCompiler::Levels compileJsonLevels(const std::vector<WriteLevel> &levels,
                                        const RowView &columns, ComposeOperation::TextForm form,
                                        const JsonColumns &special = {});

/// The level that is used when none is declared: an object per row, with all columns or those of
/// `toWrite`, which the other choice ignores.
std::vector<WriteLevel> defaultJsonLevels(bool writeAllColumns, const QStringList &toWrite);

/// Whether a format of FloatFormat::set() prints numbers as JSON has them, apart from spaces
/// around them.
bool printsJsonNumber(const QString &format);

} // namespace corvanta::compose
