// Formats rows as worksheet XML, directly into the blocks of a package member. The elements are
// drawn in sheet_writer.cpp.
#pragma once
#include "base/number.h"
#include "base/result.h"
#include "base/row_view.h"
#include "codecs/sheet/cell_text.h"
#include "codecs/sheet/date_parser.h"
#include "codecs/zip/package_writer.h"

#include <QStringList>

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvanta::sheet {

/// Both end the sheet: what was written is not a complete member.
enum class Error : quint8 {
    WriteFailed, ///< the sink of the package refused a write
    TextTooLong, ///< a text beyond kMaxCellChars
};

/// Rows and columns that spreadsheet programs read (XFD1048576 is the last cell). The writer itself
/// has no such limit; the caller decides what happens beyond it.
inline constexpr qint64 kMaxRows = 1048576;
inline constexpr size_t kMaxColumns = 16384;

/// How cells are written. The same for all rows of a sheet.
struct SheetOptions
{
    FloatFormat floatFormat;         ///< of finite numbers; its text should be a number
    bool noNans = true;              ///< NaN and infinite numbers give no cell, else a text
    bool equalIsFormula = false;     ///< texts that start with "=" are formulas
    bool urlTag = false;             ///< texts of the form of parseLink() are hyperlinks
    bool crop = false;               ///< cut texts below kCellCharLimit
    bool keepOddDates = false;       ///< in date columns, texts that cannot be dates stay texts
    quint64 dateStyle = 1;           ///< cell format of dates: the s attribute
    std::optional<quint64> dayStyle; ///< of ISO dates without a time, if not dateStyle
    quint64 dateTimeStyle = 1;       ///< of columns of dates with times
    std::optional<quint64> dateTimeDayStyle; ///< of the dates without a time in them
    quint64 timeStyle = 1;                   ///< of times of day
    bool monthFix = false;                   ///< of dates with times, as for DateParser
    quint64 linkStyle = 2;                   ///< cell format of hyperlinks
    int firstDay = 0;                        ///< serial that the workbook counts as day 0
    std::optional<quint64> headerStyle;      ///< cell format of the header, if it has one
    /// Cell formats of rows by column, as for SheetWriter::setStyles().
    std::vector<std::optional<quint64>> columnStyles;
};

/// What becomes of the text of a cell that cannot be written as it is.
enum class CellProblem : quint8 {
    LongText,     ///< written whole, though longer than kCellCharLimit; reported for each piece
    CutText,      ///< cut to kCellCharLimit
    OddText,      ///< has characters that a sheet cannot hold; see escapeText()
    NotADate,     ///< does not have the date format; the cell is left out
    EarlyDate,    ///< before the first day of the workbook; the cell is left out
    LongFraction, ///< digits of a second after the third, which are rounded
    Zone,         ///< the zone after a time, which is left out
    NotFinite,    ///< a NaN or an infinite number; the cell is left out
};
/// `column` is the position in the sheet, from 0; `text` is valid during the call.
using CellReport = std::function<void(CellProblem problem, int column, std::u16string_view text)>;

/// A column to write. The columns of the sheet are in the order of the list, from A.
struct Column
{
    /// Key and Float need an input of that type, the others but Date a text. Texts of DateTime (ISO
    /// dates, with or without a time), Time (such as 04:30:05) and Boolean (true and false in any
    /// letter case) that do not have the form stay texts.
    enum class Kind { Date, DateTime, Time, Boolean, Formula, Key, Float, Text };
    int input = 0; ///< index in the input row, from 0
    Kind kind = Kind::Text;
    QString name; ///< for the header
};

/// One cell with a hyperlink. The caller writes the hyperlink elements after the rows, and the
/// addresses as relationships of the sheet.
struct LinkUse
{
    qint64 number = 0; ///< of its address, from 1
    qint64 row = 0;    ///< from 1
    int column = 0;    ///< from 0
};

/// A few characters of fixed XML, at most 48. All 48 bytes are copied, which takes a few
/// instructions; a copy of the exact length would be a function call.
struct Markup
{
    char text[48] = {};
    int size = 0;

    explicit Markup(QByteArrayView markup)
        : size(static_cast<int>(markup.size()))
    {
        Q_ASSERT(markup.size() <= static_cast<qsizetype>(sizeof text));
        std::copy(markup.begin(), markup.end(), text);
    }
};

/// Writes header and rows into the open member of a package. Threads: one at a time.
///
/// After a fault nothing more can be written. The rows are formatted directly into the blocks that
/// the package compresses, so a cell costs no allocation and no virtual call. A sheet must be
/// opened and ended by put(), which takes the XML before and after the rows.
class SheetWriter
{
public:
    /// The sheet's member must be open in `package`. `package` and `dates` must outlive the writer.
    /// `report` is called during putHeader() and putRow().
    SheetWriter(zip::PackageWriter &package, SheetOptions options, std::vector<Column> columns,
                DateParser *dates, CellReport report);

    /// Number of the sheet row that is written next, from 1.
    qint64 row() const { return m_row; }
    /// Continue at another row; rows must increase, as readers expect them in order.
    void setRow(qint64 row) { m_row = row; }

    /// Give the cells of rows, but not of the header, these cell formats by column; a column
    /// without one keeps what the options say. Up to columnCount() entries.
    void setStyles(std::vector<std::optional<quint64>> styles) { m_newStyles = std::move(styles); }

    /// Keep what is written in memory until takeHeld(): for a caller that puts something before it
    /// that depends on the first rows.
    void hold() { m_isHolding = true; }
    qint64 heldBytes() const { return m_isHolding ? m_out - m_begin : 0; }
    /// End hold(). The caller puts the returned bytes.
    QByteArray takeHeld();

    /// Write XML unchanged. Errors: WriteFailed.
    Result<void, Error> put(QByteArrayView xml);
    /// Write the names of the columns as a row, as texts also where they look like formulas or
    /// links. Errors: WriteFailed, TextTooLong.
    Result<void, Error> putHeader();
    /// Write a row, also when none of its cells has content. Text cells must be aligned to 2 bytes.
    /// Missing cells, empty texts and texts that are not dates in a column of dates give no cell.
    /// Errors: WriteFailed, TextTooLong.
    Result<void, Error> putRow(const RowView &row);
    /// Hand everything formatted so far to the package; call it before any other use of the
    /// package.
    /// The writer may continue afterwards.
    void commit();

    /// The number of written columns.
    /// Valid also after a fault, like the functions below.
    int columnCount() const { return static_cast<int>(m_columns.size()); }
    /// The written columns, in the order of the sheet.
    const std::vector<Column> &columns() const { return m_columns; }
    /// All cells with hyperlinks, in the order in which they were written.
    const std::vector<LinkUse> &linkUses() const { return m_linkUses; }
    /// URLs in the order of their numbers, which count from 1; each is different.
    const QStringList &urls() const { return m_urls; }

private:
    // The functions that run for every cell return true for success. Otherwise m_error is set,
    // which putHeader() and putRow() return as a Result.
    bool makeRoom(size_t bytes);
    /// makeRoom() in memory, for hold().
    void makeHeldRoom(size_t bytes);
    /// Make room for at least `bytes` at m_out.
    bool room(size_t bytes)
    {
        return static_cast<size_t>(m_end - m_out) >= bytes || makeRoom(bytes);
    }
    /// Write XML of any length, a block at a time.
    bool putAll(QByteArrayView xml);
    // The functions from here to appendReference() need room() for what they append.
    void append(QByteArrayView text);
    void append(const Markup &markup);
    /// The start of the cell element up to its reference, for example <c r="B7.
    void appendReference(int column);
    bool startRow();
    /// Put the formats of setStyles() into the beginnings of the cells.
    void applyStyles();
    /// `opening`, which has a format of its own, or `plain` in a column that has one already.
    const Markup &openingFor(int column, const Markup &opening, const Markup &plain) const
    {
        return m_hasStyle[static_cast<size_t>(column)] != 0 ? plain : opening;
    }
    /// `isGood`: whether all cells were written. Counts the row.
    Result<void, Error> endRow(bool isGood);
    // `column` is the position in the sheet, from 0.
    bool putCell(int column, const RowView &row);
    bool putKey(int column, const uchar *cell);
    bool putFloat(int column, const uchar *cell);
    bool putFinite(double value);
    bool putDate(int column, std::u16string_view text);
    bool putDateTime(int column, std::u16string_view text);
    bool putTime(int column, std::u16string_view text);
    bool putSerial(int column, double serial, const Markup &opening);
    bool putBoolean(int column, std::u16string_view text);
    bool putNumberAsDate(int column, cell::Type type, const uchar *cell);
    bool putText(int column, Column::Kind kind, std::u16string_view text);
    /// The cell has the label as its text; the address is written after the rows, by the caller.
    bool putLink(int column, const LinkText &link);
    bool putEscaped(int column, const Markup &opening, std::u16string_view text,
                    const Markup &closing);
    void reportOddText(int column, std::u16string_view text);
    /// putEscaped() for a text that may reach kCellCharLimit.
    bool putLongEscaped(int column, const Markup &opening, std::u16string_view text,
                        const Markup &closing);

    zip::PackageWriter &m_package;
    SheetOptions m_options;
    std::vector<Column> m_columns;
    std::vector<Markup> m_references;                // <c r="XFD, followed by the row number
    std::vector<char> m_hasStyle;                    // by column: m_references has a format
    std::vector<std::optional<quint64>> m_newStyles; // until the next row
    DateParser *m_dates;
    DateParser m_isoDates; // of columns of dates with times
    CellReport m_report;
    Markup m_rowStart; // " spans="1:N">
    Markup m_dateOpening;
    Markup m_dayOpening;
    Markup m_dateTimeOpening;
    Markup m_dateTimeDayOpening;
    Markup m_timeOpening;
    Markup m_linkOpening;
    char m_rowDigits[kNumberChars] = {};
    int m_rowDigitCount = 0;
    qint64 m_row = 1;
    Error m_error = Error::WriteFailed;

    // The room of the package, which is all of one block: up to m_out it is written. While the
    // writer is holding, it is that of m_held.
    char *m_begin = nullptr;
    char *m_out = nullptr;
    char *m_end = nullptr;

    QByteArray m_held;
    bool m_isHolding = false;

    bool m_isOdd = false; // of the last text
    std::vector<char> m_longText;
    std::unordered_map<QString, qint64> m_urlNumbers; // of m_urls, from 1
    QStringList m_urls;
    std::vector<LinkUse> m_linkUses;
};

} // namespace corvanta::sheet
