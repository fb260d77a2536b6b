// Reads documents from the texts in the rows of input pin 0.
//
// Cells hold UTF-16; the tokenizers read bytes. Each text is converted once, to UTF-8 without a
// byte-order mark.
#pragma once
#include "base/byte_source.h"
#include "corvanta/action_item.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace corvanta {

/// The texts of one column as a stream of UTF-8 bytes. Threads: one at a time.
class PinText final : public ByteSource
{
public:
    enum class Mode : quint8 {
        RowByRow, ///< the bytes of one row; nextRow() starts the next one
        Stream,   ///< the bytes of all rows; the next row is taken when one is used up
    };

    /// `isInsideValue` is called when a row of a stream is used up. It returns whether a value of
    /// the document continues in the next row; if not, spaces are added after the row. `first` is
    /// the row of the pin that the caller has already taken; null: there is none.
    PinText(ActionItem &action, int column, Mode mode, const OneRow *first,
            std::function<bool()> isInsideValue);

    /// Go to the next row that has a text, and discard the rest of this one. Returns false at the
    /// end.
    bool nextRow();

    /// The column, from 0, in the text of a row of a position in what read() delivered, which
    /// begins with spaces.
    static qint64 columnInRow(qint64 line, qint64 column)
    {
        return line == 1 ? std::max<qint64>(column - kSpaces, 0) : column;
    }

    /// While on, the text ends at the end of the current row, also with Mode::Stream.
    void stayInRow(bool on) { m_staysInRow = on; }

    /// The current row; valid after nextRow() returned true.
    const OneRow *row() const { return m_row; }
    /// Its number, counted from 1.
    qint64 rowNumber() const { return m_rowNumber; }

    /// With Mode::Stream, waits for rows of the pin.
    qint64 read(void *buffer, qint64 n) override;
    /// Unknown: later rows have not arrived.
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

private:
    /// Added before and after a document. As many bytes as a decoder reads to find a byte-order
    /// mark, so that the decoder does not wait for the next row.
    static constexpr qint64 kSpaces = 4;

    /// The row that the caller has already taken, then those of the pin; null at the end.
    const OneRow *takeRow();

    ActionItem &m_action;
    int m_column;
    Mode m_mode;
    std::function<bool()> m_isInsideValue;
    const OneRow *m_first;         ///< not yet delivered
    const OneRow *m_row = nullptr; ///< owned by the pin; valid until the next one is taken
    qint64 m_rowNumber = 0;
    std::vector<char> m_bytes; ///< UTF-8 text of the current row, with spaces
    size_t m_at = 0;           ///< next byte to deliver
    bool m_staysInRow = false;
    bool m_isSeparated = false; ///< spaces were added after the row's text
};

} // namespace corvanta
