// Composes the elements of levels from rows: the engine of the JSON and the XML writer.
//
// A level is a list of operations that write one element. This class holds what the two syntaxes
// have in common; their differences are compiled into the operations once (json_levels.h,
// xml_levels.h), so that a row costs only the decisions that depend on its cells.
//
// The open levels are a stack with level 0 at the bottom. An operation that calls a sub-level opens
// it, and the calling level pauses there: rows of the same partition become elements of the
// sub-level. When another row comes, the rest of the caller is written from the cells that it kept.
// Rows of a partition must follow each other: a partition that comes again starts a new element.
//
//     row   key (partition of level 1)   value     written
//     1     A                            1         {"k":"A","v":[1          level 1 stays open
//     2     A                            2         ,2
//     3     B                            3         ]},{"k":"B","v":[3
//     end                                          ]}
#pragma once
#include "base/number.h"
#include "base/row_view.h"
#include "codecs/compose/kept_cells.h"
#include "codecs/compose/text_block.h"

#include <optional>
#include <vector>

namespace corvanta::compose {

/// How values are written. The rules are the same for all levels of a file.
struct ValueRules
{
    // The text in place of such a value, written without quotes and escapes; without one the value
    // is left out, with its key and separator.
    std::optional<FixedText> missingText;
    std::optional<FixedText> missingNumber;
    std::optional<FixedText> notFinite;
    bool namesNotFinite = false; ///< write nan, inf and -inf instead of `notFinite`
    bool specialBool = false;    ///< the texts true, True, false and False are JSON booleans
    bool decimalComma = false;   ///< replaces the first point of a number that is not a key
    FloatFormat floatFormat;     ///< of finite numbers
};

/// One thing that a level writes. Kinds use the members that they name, and ignore the others.
struct ComposeOperation
{
    enum class Kind {
        Text,           ///< `text`
        Values,         ///< the values of `columns`, `text` between them and `tail` after them
        QuotedValue,    ///< the first column's value in double quotes; "" when it is left out
        RawValue,       ///< the first column's text without changes; ignores ValueRules
        CommaIfWritten, ///< "," when the previous operation wrote a value
        SubLevel,       ///< an element of `subLevel`, which stays open
        Nothing,        ///< of an item of an unknown type
    };
    /// How the text cells of `columns` are escaped; see the types of escape.h. The Json forms also
    /// put the text between quotes.
    enum class TextForm {
        JsonString,
        JsonStringWithLineFeed,
        JsonStrict,
        XmlText,
        XmlAttribute,
        XmlStrict
    };
    struct Column : CellColumn
    {
        FixedText before = {}; ///< the key, or the opening tag; left out with the value
        FixedText after = {};  ///< the closing tag or quote; left out with the value
        /// Texts that are JSON numbers, or true or false in any letter case, have no quotes.
        bool isBare = false;
        /// Texts are written unchanged: they have the syntax of the file.
        bool isReady = false;
        QString newName = {}; ///< that `before` has in place of the column's, which is not valid
    };

    bool isCall() const { return kind == Kind::SubLevel; }

    Kind kind = Kind::Nothing;
    TextForm form = TextForm::JsonString;
    FixedText text = {};              ///< of Text; between the values of Values
    FixedText tail = {};              ///< of Values: after them, if one was written
    std::vector<Column> columns = {}; ///< at least one for QuotedValue and RawValue
    size_t subLevel = 0;              ///< index of the level
    /// Of Values and RawValue: whether the file is not valid when nothing is written, as in {"a":}.
    /// See markNeededValues().
    bool needsValue = false;
    /// Of Values: whether it must write a value if the CommaIfWritten before has written a comma.
    bool followsComma = false;
};

/// A number of events, and where the first one was.
struct CountedValues
{
    qint64 count = 0;
    int column = -1; ///< index in the table; -1: it has none

    void add(int ofColumn) { column = count++ == 0 ? ofColumn : column; }
};

/// The operations of one element, in their order.
struct ComposeLevel
{
    /// Rows with the same cell in this column belong to the same element of the caller. Unused at
    /// level 0. Missing cells equal each other.
    std::optional<CellColumn> partition;
    bool commaSeparated = true; ///< "," before every element of an array but its first
    FixedText lineBreak;        ///< before every element, and before what follows a sub-level
    std::vector<ComposeOperation> operations;
};

/// The result is appended to a text block, whose failure() the caller checks; after a failure the
/// calls do nothing harmful. Order of the calls: putRow() for each row, then endElements(), which
/// may be followed by more rows for another file. Threads: one at a time.
class LevelComposer
{
public:
    /// The levels come from a LevelCompiler, which guarantees the following.
    /// `levels` has at least one level; every level but the first has a partition, and none leads
    /// back to itself. `block` must outlive the composer.
    LevelComposer(std::vector<ComposeLevel> levels, ValueRules rules, TextBlock &block);

    /// Write an element for a row of the table that the levels were compiled for, after what
    /// remains of the elements that the row is not a part of. The cells may be gone when the call
    /// returns.
    void putRow(const RowView &row);
    /// Finish all open levels; the next row starts as the first one did, without a comma. Does
    /// nothing when no row was written.
    void endElements();
    // Since the construction.

    /// Operations that wrote nothing where the text around them needs a value; the column is the
    /// first of the operation.
    const CountedValues &lackingValues() const { return m_lacking; }
    /// NaN and infinite numbers that were not written by their names.
    const CountedValues &lostNumbers() const { return m_lostNumbers; }

private:
    using Cells = const uchar *const *; // by column of the table: of a row, or kept ones
    using Operation = ComposeOperation;
    using Column = ComposeOperation::Column;
    /// A level and the state of its current element.
    struct Level
    {
        ComposeLevel plan;
        bool hasSubLevels = false;
        bool isFirstElement = true; ///< of the current array
        size_t next = 0;            ///< operation to continue with; 0 when no element is open
        KeptCells kept;             ///< of the row that opened the current element
    };

    /// The innermost open level.
    Level &top() { return m_levels[m_open.back()]; }
    /// Whether the row belongs to the same partition as the one that opened `level`.
    static bool isSamePartition(const Level &level, Cells cells);
    // Finishing: from the innermost level outwards. `depth` is a number of levels of the stack.
    void finishElements(Cells cells);
    void closeDownTo(size_t depth);
    void finishTop();
    // Writing: the innermost level, and the sub-levels that it opens.
    void run(Cells cells);
    bool runOperations(Level &level, Cells cells);
    /// Write what comes before an element, or before what follows a sub-level in it.
    void startOrResume(Level &level);
    /// Keep the partition of the row for the comparison with later rows.
    void openSubLevel(size_t index, Cells cells);

    // The functions that return a bool return whether they wrote a value, and false for a value
    // that the rules leave out. `lead` is the separator to write before it.
    void put(const Operation &operation, Cells cells);
    void putValues(const Operation &operation, Cells cells);
    /// The only value that the rules do not apply to: a missing cell is empty. Returns false then.
    bool putRaw(const Column &column, const uchar *cell);
    void countLacking(const Operation &operation);
    /// Any cell; the functions after it write one kind of value.
    // A value with what surrounds it; texts by the form of their operation.
    bool putCell(Operation::TextForm form, const Column &column, const uchar *cell,
                 const FixedText &lead);
    bool putText(Operation::TextForm form, const Column &column, std::u16string_view text,
                 const FixedText &lead);
    /// A text that needs no quotes; false for any other.
    bool putBare(const Column &column, std::u16string_view text, const FixedText &lead);
    bool putUnchanged(const Column &column, std::u16string_view text, const FixedText &lead);
    // Text in quotes, and without.
    template <class Escapes>
    bool putString(const Column &column, std::u16string_view text, const FixedText &lead);
    template <class Escapes>
    bool putMarkup(const Column &column, std::u16string_view text, const FixedText &lead);
    // A text of the rules (null: leave the value out), or a number.
    bool putFixed(const FixedText *text, const Column &column, const FixedText &lead);
    bool putNumber(const char *digits, qsizetype n, const Column &column, const FixedText &lead);
    bool putFloat(double value, const Column &column, const FixedText &lead);
    bool putFinite(double value, const Column &column, const FixedText &lead);
    template <class Write>
    bool putAround(const Column &column, const FixedText &lead, qsizetype room, Write write);

    std::vector<Level> m_levels; // by index of the level; a level is on the stack at most once
    std::vector<size_t> m_open;  // the stack, level 0 at the bottom; never empty
    ValueRules m_rules;
    TextBlock &m_block;
    bool m_lastWrote = false; // whether the last Values operation wrote one
    CountedValues m_lacking;
    CountedValues m_lostNumbers;
};

} // namespace corvanta::compose
