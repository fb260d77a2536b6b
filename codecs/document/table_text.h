// The XML text of a table in a Word document, written row by row.
//
// Layout: docs/formats/office-documents.md. Sizes are in bytes unless they say twentieths of a
// point. Threads: one at a time.
#pragma once
#include "base/row_view.h"
#include "codecs/document/document_text.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta::document {

/// The style that every template gets.
inline constexpr char kTableGridStyle[] = "TableGrid";

/// Add that style to a styles part. Returns false, and changes nothing, if the part has a style of
/// this id, whose look may be intended, or if it has no end tag.
bool addTableGrid(QByteArray *styles);

/// Whether a styles part defines a style with this id.
bool definesStyle(QByteArrayView styles, const QString &id);

/// The ids of the table styles in a styles part, in its order.
QStringList tableStyles(QByteArrayView styles);

/// The text width of a page of A4 paper with the usual margins, in twentieths of a point.
inline constexpr int kPageWidth = 9072;

/// Widths of `columns` columns, in twentieths of a point, from a comma-separated list. Columns
/// without a valid width (1 to 31680) share what the others leave of kPageWidth, but get at least
/// 720. `*invalid` is set to the entries that are not a width, in their order.
std::vector<int> columnWidths(const QString &list, qsizetype columns, QStringList *invalid);

class TableText
{
public:
    /// `styleId` is any text. `rules` are those of Word documents.
    TableText(const QString &styleId, const std::vector<int> &widths, const TextRules &rules);

    // Each function appends to text(). A row is beginRow(), one putCell() per width, endRow().
    // A header is written as a row.

    void begin();
    void beginRow();
    /// Returns the counts of this cell.
    TextCounts putCell(QStringView text);
    void endRow();
    void end();

    /// What was written since the last clear().
    QByteArrayView text() const { return {m_text.data(), m_size}; }
    void clear() { m_size = 0; }

private:
    /// The end of the text, with room for `bytes` bytes.
    char *room(qsizetype bytes);
    void put(QByteArrayView bytes);

    TextRules m_rules;
    QByteArray m_head;                    // before the first row
    std::vector<QByteArray> m_beginnings; // of the cells, up to their text
    size_t m_column = 0;                  // of the next cell
    std::vector<char> m_text;             // room; m_size of it is used
    qsizetype m_size = 0;
};

} // namespace corvanta::document
