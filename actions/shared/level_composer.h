// writers/level_composer.h
// Composes elements of levels from rows: the engine of the JSON and the XML writer.
//
// A level is a list of operations that write one element. What the two syntaxes have in common is
// all here; what they differ in is compiled into the operations beforehand (json_levels.h,
// xml_levels.h), so that a row costs no decisions but those that its cells ask for.
//
// The open levels are a stack with level 0 at the bottom. An operation that calls a sub-level opens
// it, and the calling level pauses there: rows of the same partition become elements of the
// sub-level, and the rest of the caller is written, from the row that it kept, when another row
// comes.
#pragma once
#include "base/number.h"
#include "codecs/compose/text_block.h"
#include "corvanta/one_row.h"

#include <optional>
#include <vector>

namespace corvanta {

/// How values are written.
struct ValueRules
{
    // Each: the text in place of such a value, or nothing to leave it out with its key and
    // separator.
    std::optional<compose::FixedText> missingText;
    std::optional<compose::FixedText> missingNumber;
    std::optional<compose::FixedText> notFinite;
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
        QuotedValue,    ///< the first column's value between double quotes, which stay without one
        RawValue,       ///< the first column's text as it is
        CommaIfWritten, ///< "," when the operation before wrote a value
        SubLevel,       ///< an element of `subLevel`, which stays open
        Nothing,
    };
    /// What is done to the text cells of `columns`.
    enum class TextForm {
        JsonString,
        JsonStringWithLineFeed,
        JsonStrict,
        XmlText,
        XmlAttribute,
        XmlStrict
    };
    struct Column
    {
        int input = 0; ///< index in the row
        MetaInfo::MetaTypeColumn type = MetaInfo::Unknown;
        compose::FixedText before;
        compose::FixedText after;
    };

    Kind kind = Kind::Nothing;
    TextForm form = TextForm::JsonString;
    compose::FixedText text = {};
    compose::FixedText tail = {};
    std::vector<Column> columns = {};
    size_t subLevel = 0;
};

struct ComposeLevel
{
    int partitionColumn = -1; ///< not used at level 0
    bool commaSeparated = true;
    compose::FixedText lineBreak; ///< in front of every element and of what follows a sub-level
    std::vector<ComposeOperation> operations;
};

/// See the top of the file. Failures are those of the text block. Threads: one at a time.
class LevelComposer
{
public:
    /// `levels` has at least one level and none that reaches itself; `block` must outlive the
    /// composer.
    LevelComposer(std::vector<ComposeLevel> levels, ValueRules rules, compose::TextBlock &block);

    void putRow(const OneRow &row);
    /// Finish all open levels; the next row starts as the first one did.
    void endElements();

private:
    struct Level
    {
        ComposeLevel plan;
        bool hasSubLevels = false;
        bool isFirstElement = true;
        size_t next = 0; ///< operation to go on with; 0 when no element is open
        OneRow kept;     ///< the row that opened the current element
    };
    using Operation = ComposeOperation;
    using Column = ComposeOperation::Column;

    Level &top() { return m_levels[m_open.back()]; }
    bool isSamePartition(const Level &level, const OneRow &row) const;
    void closeDownTo(size_t depth);
    void finishTop();
    void startElement(const OneRow &row);
    void run(const OneRow &row);
    bool runOperations(Level &level, const OneRow &row);

    void putValues(const Operation &operation, const OneRow &row);
    bool putCell(Operation::TextForm form, const Column &column, const uchar *cell,
                 const compose::FixedText &lead);
    bool putText(Operation::TextForm form, const Column &column, std::u16string_view text,
                 const compose::FixedText &lead);
    bool putFixed(const compose::FixedText *text, const Column &column,
                  const compose::FixedText &lead);
    bool putNumber(const char *digits, qsizetype n, const Column &column,
                   const compose::FixedText &lead);
    bool putFloat(double value, const Column &column, const compose::FixedText &lead);
    template <class Write>
    bool putAround(const Column &column, const compose::FixedText &lead, qsizetype room,
                   Write write);
    void putRaw(const Operation &operation, const OneRow &row);

    std::vector<Level> m_levels;
    std::vector<size_t> m_open; // the stack, level 0 at the bottom
    ValueRules m_rules;
    compose::TextBlock &m_block;
    bool m_lastWrote = false; // whether the last Values operation wrote one
};

} // namespace corvanta
