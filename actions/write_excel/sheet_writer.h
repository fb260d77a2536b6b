// writers/sheet_writer.h
// Formats rows as worksheet XML, straight into the blocks of a package member.
#pragma once
#include "base/number.h"
#include "codecs/sheet/cell_text.h"
#include "codecs/sheet/new_workbook.h"
#include "codecs/zip/package_writer.h"
#include "corvanta/one_row.h"

#include <QHash>

#include <algorithm>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace corvanta {

/// What decides how cells are written.
struct SheetOptions
{
    FloatFormat floatFormat;
    bool noNans = true;
    bool equalIsFormula = false;
    bool urlTag = false;
    bool crop = false;
    QByteArray datePrefix = sheet::kNewDatePrefix;
    QByteArray linkPrefix = sheet::kNewLinkPrefix;
    int firstDay = 0; ///< serial that the workbook counts as day 0
};

/// A few characters of fixed XML. Copied whole, which is one or two instructions, where a copy of
/// the exact length would be a call.
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
class SheetWriter
{
public:
    enum class Error { None, Write, BufferTooSmall };
    enum class Kind { Date, Formula, Key, Float, Text };
    struct Column
    {
        int input = 0; ///< index in the input row
        Kind kind = Kind::Text;
        QString name;
    };
    /// One hyperlink of a cell; row from 1, column position from 0.
    struct LinkUse
    {
        qint64 number;
        qint64 row;
        int column;
    };

    /// `tooLong` is called for pieces of text beyond what a cell may hold, `retry` is asked after a
    /// failed write whether to try again. `package` and `dates` outlive the writer.
    SheetWriter(zip::PackageWriter &package, SheetOptions options, std::vector<Column> columns,
                sheet::DateParser *dates, std::function<void()> tooLong,
                std::function<bool()> retry);

    /// Sheet row that is written next, from 1.
    qint64 row() const { return m_row; }
    void setRow(qint64 row) { m_row = row; }

    /// Write fixed XML.
    Error put(QByteArrayView xml);
    Error putHeader();
    Error putRow(const OneRow &row);
    /// Hand what was formatted to the package; before it is used for anything else.
    void commit();

    int columnCount() const { return static_cast<int>(m_columns.size()); }
    const std::vector<LinkUse> &linkUses() const { return m_linkUses; }
    /// URLs in the order of their numbers, which count from 1.
    const QStringList &urls() const { return m_urls; }
    /// The hyperlink elements (without the block around them); numbers follow `existing`.
    QByteArray hyperlinkElements(qint64 existing) const;

private:
    bool makeRoom(size_t bytes);
    /// Room for `bytes` at m_out; false when the package cannot take them.
    bool room(size_t bytes)
    {
        return static_cast<size_t>(m_end - m_out) >= bytes || makeRoom(bytes);
    }
    void append(QByteArrayView text);
    void append(const Markup &markup);
    void appendReference(int column);
    void startRow();
    Error endRow();
    bool putKey(int column, const uchar *cell);
    bool putFloat(int column, const uchar *cell);
    bool putDate(int column, const OneRow &row);
    Error putText(int column, Kind kind, std::u16string_view text);
    Error putLink(int column, const sheet::LinkText &link);
    Error putEscaped(int column, const Markup &opening, std::u16string_view text,
                     const Markup &closing);
    Error putLongEscaped(int column, const Markup &opening, std::u16string_view text,
                         const Markup &closing);

    zip::PackageWriter &m_package;
    SheetOptions m_options;
    std::vector<Column> m_columns;
    std::vector<Markup> m_references; // <c r="XFD, behind it the row number
    sheet::DateParser *m_dates;
    std::function<void()> m_tooLong;
    std::function<bool()> m_retry;
    Markup m_rowStart; // " spans="1:N">
    Markup m_datePrefix;
    Markup m_linkPrefix;
    char m_rowDigits[kNumberChars] = {};
    int m_rowDigitCount = 0;
    qint64 m_row = 1;

    char *m_begin = nullptr; // the room at hand
    char *m_out = nullptr;
    char *m_end = nullptr;

    std::vector<char> m_longText;
    QHash<QString, qint64> m_urlNumbers;
    QStringList m_urls;
    std::vector<LinkUse> m_linkUses;
};

} // namespace corvanta
