// Makes rows of cells from the values that the library delivers: numbers, dates, texts and labels.
// Unit and epoch of dates come from the format of their variable (see DateKind).
#pragma once
#include "base/cell.h"
#include "base/occurrences.h"
#include "codecs/encoding/text_decoder.h"
#include "codecs/stat/dictionary.h"
#include "codecs/stat/long_texts.h"
#include "codecs/stat/row_ring.h"
#include "codecs/stat/value_labels.h"

#include <readstat.h>

namespace corvanta::stat {

using encoding::Decoded;
using encoding::TextDecoder;

/// What was replaced or left out. Places are rows and columns.
struct Findings
{
    Occurrences replacedTexts; ///< with bytes that are invalid in the encoding
    Occurrences cutTexts;      ///< that end in an incomplete character
    Occurrences userMissing;   ///< values that the file declares to be missing
    Occurrences lostLabels;    ///< missing values with a label, where labels are read
    Occurrences badDates;      ///< that the calendar does not have; they are read as numbers
    Occurrences lostTexts;     ///< long ones (strL) that the file does not have
};

/// How the values of a column become cells.
struct ColumnPlan
{
    cell::Type type = cell::Type::Double;
    DateKind date = DateKind::None;
    bool hasMissingRanges = false;
    int longTextAt = -1;                 ///< offset in a row of the reference to a long text
    const ValueLabels *labels = nullptr; ///< null: values are not replaced by labels
    QString name;
};

/// Threads: that of the parser.
class RowMaker
{
public:
    /// The objects must outlive the maker. `longTexts` is null without columns of them.
    /// `isDecoded`: the library has decoded the texts, so that U+FFFD is a byte that it could not
    /// decode.
    RowMaker(RowRing &ring, const TextDecoder &decoder, const std::vector<ColumnPlan> &columns,
             LongTexts *longTexts, bool isDecoded)
        : m_ring(ring)
        , m_decoder(decoder)
        , m_columns(columns)
        , m_longTexts(longTexts)
        , m_isDecoded(isDecoded)
    {
    }

    /// Start row number `row`, from 0. Returns false as RowRing::beginRow() does.
    bool begin(qint64 row);
    /// Set the cell of a column. Returns false as RowRing::room() returns null, and after a fault
    /// of the long texts.
    bool put(int column, const readstat_value_t &value, readstat_variable_t *variable);

    const Findings &findings() const { return m_findings; }

private:
    // Functions that return a bool return false as RowRing::room() does return null.
    // Set the cell of a column of numbers, and of one of texts.
    bool putNumber(int column, double number);
    bool putText(int column, const char *text, qsizetype n);
    /// Also false after a fault of the long texts.
    bool putLongText(int column);
    uchar *roomForText(qsizetype n);
    /// `n` characters, which need no decoder.
    bool putAscii(int column, const char *text, int n);
    /// A number in a column of texts.
    bool putOwn(int column, double number);
    /// Whether the cell is empty: a system-missing value, or one that the user declared as missing.
    bool isMissing(const ColumnPlan &plan, const readstat_value_t &value,
                   readstat_variable_t *variable);
    /// Count a missing value that has a label: its cell stays missing.
    void noteLabel(const ColumnPlan &plan, const readstat_value_t &value);
    // Findings keep the place of the first one; it is put into words only then.
    /// Count a text that was not decoded completely.
    void countLoss(Decoded result, const ColumnPlan &plan);
    QString place(const ColumnPlan &plan) const;

    RowRing &m_ring;
    const TextDecoder &m_decoder;
    const std::vector<ColumnPlan> &m_columns;
    LongTexts *const m_longTexts;
    const bool m_isDecoded;
    std::vector<char> m_longText; // the bytes of one, before they are decoded
    qint64 m_row = 0;
    Findings m_findings;
};

} // namespace corvanta::stat
