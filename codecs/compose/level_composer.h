// Composes the elements of levels from rows: the engine of the JSON and the XML writer.
//
// A level is a list of operations that write one element. This class holds what the two syntaxes
// have in common; their differences are compiled into the operations once (json_levels.h,
// xml_levels.h), so that a row costs only the decisions that depend on its cells.
//
// The open levels are a stack with level 0 at the bottom. An operation that calls a sub-level opens
// it, and the calling level pauses there: rows of the same partition become elements of the
// sub-level. When another row comes, the rest of the caller is written from the cells that it kept.
#pragma once
#include "base/number.h"
#include "base/row_view.h"
#include "codecs/compose/kept_cells.h"
#include "codecs/compose/text_block.h"

#include <optional>
#include <vector>

namespace corvanta::compose {

/// How values are written.
struct ValueRules
{
    // The text in place of such a value; without one the value is left out, with its key and
    // separator.
    std::optional<FixedText> missingText;
    std::optional<FixedText> missingNumber;
    std::optional<FixedText> notFinite;
    bool namesNotFinite = false; ///< write nan, inf and -inf instead of `notFinite`
    bool specialBool = false;    ///< the texts true, True, false and False are JSON booleans
    bool decimalComma = false;
    FloatFormat floatFormat;
};

/// One thing that a level writes.
struct ComposeOperation
{
    enum class Kind {
        Text,           ///< `text`
        Values,         ///< the values of `columns`, `text` between them and `tail` after them
        QuotedValue,    ///< the first column's value in double quotes; "" when it is left out
        RawValue,       ///< the first column's text without changes
        CommaIfWritten, ///< "," when the previous operation wrote a value
        SubLevel,       ///< an element of `subLevel`, which stays open
        Nothing,
    };
    /// How the text cells of `columns` are escaped.
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
        FixedText before = {};
        FixedText after = {};
    };

    Kind kind = Kind::Nothing;
    TextForm form = TextForm::JsonString;
    FixedText text = {};
    FixedText tail = {};
    std::vector<Column> columns = {};
    size_t subLevel = 0; ///< index of the level
};

struct ComposeLevel
{
    std::optional<CellColumn> partition; ///< unused at level 0
    bool commaSeparated = true;
    FixedText lineBreak; ///< before every element, and before what follows a sub-level
    std::vector<ComposeOperation> operations;
};

/// Failures are those of the text block. Threads: one at a time.
class LevelComposer
{
public:
    /// `levels` has at least one level; every level but the first has a partition, and none leads
    /// back to itself. `block` must outlive the composer.
    LevelComposer(std::vector<ComposeLevel> levels, ValueRules rules, TextBlock &block);

    /// Write an element for a row of the table that the levels were compiled for.
    void putRow(const RowView &row);
    /// Finish all open levels; the next row starts as the first one did.
    void endElements();

private:
    using Cells = const uchar *const *;
    using Operation = ComposeOperation;
    using Column = ComposeOperation::Column;
    struct Level
    {
        ComposeLevel plan;
        bool hasSubLevels = false;
        bool isFirstElement = true;
        size_t next = 0; ///< operation to continue with; 0 when no element is open
        KeptCells kept;  ///< of the row that opened the current element
    };

    Level &top() { return m_levels[m_open.back()]; }
    static bool isSamePartition(const Level &level, Cells cells);
    void finishElements(Cells cells);
    void closeDownTo(size_t depth);
    void finishTop();
    void run(Cells cells);
    bool runOperations(Level &level, Cells cells);
    void startOrResume(Level &level);
    void openSubLevel(size_t index, Cells cells);

    void put(const Operation &operation, Cells cells);
    void putValues(const Operation &operation, Cells cells);
    void putRaw(const Column &column, const uchar *cell);
    bool putCell(Operation::TextForm form, const Column &column, const uchar *cell,
                 const FixedText &lead);
    bool putText(Operation::TextForm form, const Column &column, std::u16string_view text,
                 const FixedText &lead);
    template <class Escapes>
    bool putString(const Column &column, std::u16string_view text, const FixedText &lead);
    template <class Escapes>
    bool putMarkup(const Column &column, std::u16string_view text, const FixedText &lead);
    bool putFixed(const FixedText *text, const Column &column, const FixedText &lead);
    bool putNumber(const char *digits, qsizetype n, const Column &column, const FixedText &lead);
    bool putFloat(double value, const Column &column, const FixedText &lead);
    bool putFinite(double value, const Column &column, const FixedText &lead);
    template <class Write>
    bool putAround(const Column &column, const FixedText &lead, qsizetype room, Write write);

    std::vector<Level> m_levels;
    std::vector<size_t> m_open; // the stack, level 0 at the bottom
    ValueRules m_rules;
    TextBlock &m_block;
    bool m_lastWrote = false; // whether the last Values operation wrote one
};

} // namespace corvanta::compose
