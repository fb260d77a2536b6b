// Aligned tables for terminals and files.
//
// Widths are counted in terminal columns, not in characters: East Asian characters take two
// columns, combining marks none.
#include "table_printer.h"

#include "base/counted.h"
#include "base/platform/terminal.h"
#include "cli/print/output.h"
#include "visible_text.h"

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr int kTerminalCell = 40; // terminal columns of a cell on a terminal
constexpr int kWidestCell = 1000; // and in a file, where a reader can scroll
constexpr qsizetype kRowsToMeasure = 1000;
constexpr auto kGap = "  "_L1;

/// First and last characters that take two columns (Unicode's East Asian Width W and F, roughly).
constexpr std::pair<char32_t, char32_t> kWideRanges[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},  {0xA960, 0xA97F}, {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF}, {0x1F900, 0x1FAFF}, {0x20000, 0x3FFFD}};

bool isWide(char32_t c)
{
    return std::any_of(std::begin(kWideRanges), std::end(kWideRanges),
                       [c](const auto &range) { return c >= range.first && c <= range.second; });
}

/// Characters that are drawn on the one before them.
bool isCombining(char32_t c)
{
    const QChar::Category category = QChar::category(c);
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing;
}

/// Terminal columns of one character.
int widthOf(char32_t c)
{
    if (isCombining(c)) {
        return 0;
    }
    return isWide(c) ? 2 : 1;
}

/// The beginning of `text` that fits into `width` columns.
QString fitting(const QString &text, int width)
{
    qsizetype end = 0;
    for (int used = 0; end < text.size();) {
        // Never split a surrogate pair; a lone surrogate counts as one character.
        const bool isPair = text[end].isHighSurrogate() && end + 1 < text.size();
        used += widthOf(isPair ? QChar::surrogateToUcs4(text[end], text[end + 1])
                               : text[end].unicode());
        if (used > width) {
            break;
        }
        end += isPair ? 2 : 1;
    }
    return text.left(end);
}

/// Numbers are aligned right.
bool isNumber(MetaInfo type)
{
    return type.type() != MetaInfo::Unknown;
}

/// Trailing blanks would make a terminal wrap lines.
QString withoutTrailingBlanks(QString line)
{
    while (line.endsWith(u' ')) {
        line.chop(1);
    }
    return line;
}

} // namespace

/// In cells of a terminal: wide characters take two, combining ones none.
int displayWidth(const QString &text)
{
    int width = 0;
    forEachCodePoint(text, [&](char32_t c) { width += widthOf(c); });
    return width;
}

TablePrinter::TablePrinter(const TableSchema &columns)
    : m_columns(columns)
    , m_lineWidth(platform::isTerminal(stdout) ? platform::terminalWidth(stdout) : 0)
    , m_cellWidth(m_lineWidth > 0 ? kTerminalCell : kWidestCell)
{
    // The names are measured like a row.
    m_held << shownCells(columns.names);
}

/// An empty text looks different from a missing cell, which prints nothing.
QString TablePrinter::shown(const QString &cell) const
{
    if (cell.isEmpty()) {
        return cell.isNull() ? QString() : u"\"\""_s;
    }
    // Cut long texts first: even with combining characters no more than this can be shown.
    const QString text = visibleText(cell.left(qsizetype(4) * kWidestCell));
    return displayWidth(text) <= m_cellWidth ? text : fitting(text, m_cellWidth - 1) + u'…';
}

QStringList TablePrinter::shownCells(const QStringList &cells) const
{
    QStringList texts;
    std::transform(cells.begin(), cells.end(), std::back_inserter(texts),
                   [this](const QString &cell) { return shown(cell); });
    return texts;
}

/// The first rows are held until their widths are known.
void TablePrinter::add(const QStringList &cells)
{
    const QStringList texts = shownCells(cells);
    m_hasBegun ? print(texts) : hold(texts);
}

void TablePrinter::hold(const QStringList &texts)
{
    m_held << texts;
    if (m_held.size() > kRowsToMeasure) {
        begin();
    }
}

/// The rows that were held decide the widths; later rows are cut to them.
void TablePrinter::measure()
{
    qsizetype line = 0;
    for (qsizetype i = 0; i < m_columns.names.size(); ++i) {
        int width = 0;
        for (const QStringList &row : std::as_const(m_held)) {
            width = std::max(width, displayWidth(row[i]));
        }
        line += width + (i > 0 ? kGap.size() : 0);
        // At least one column is printed, however wide it is.
        if (i > 0 && m_lineWidth > 0 && line > m_lineWidth) {
            break;
        }
        m_widths << width;
    }
}

/// Chooses the widths and prints the names, a rule and the rows that were kept.
void TablePrinter::begin()
{
    m_hasBegun = true;
    measure();
    print(m_held.takeFirst());
    QStringList rules;
    for (const int width : std::as_const(m_widths)) {
        rules << QString(width, u'-');
    }
    print(rules);
    for (const QStringList &row : std::as_const(m_held)) {
        print(row);
    }
    m_held.clear();
}

QString TablePrinter::aligned(qsizetype column, const QString &cell) const
{
    // A cell that is wider than the measured rows moves the cells after it.
    const QString blanks(std::max(m_widths[column] - displayWidth(cell), 0), u' ');
    return isNumber(m_columns.types.at(column)) ? blanks + cell : cell + blanks;
}

void TablePrinter::print(const QStringList &cells)
{
    QString line;
    for (qsizetype i = 0; i < m_widths.size(); ++i) {
        line += (i > 0 ? kGap : ""_L1) + aligned(i, cells[i]);
    }
    printText(withoutTrailingBlanks(line) + u'\n');
}

/// A short table is printed as a whole only now, when all its widths are known.
void TablePrinter::finish()
{
    if (m_columns.names.isEmpty()) {
        return;
    }
    if (!m_hasBegun) {
        begin();
    }
    const QStringList left = QStringList(m_columns.names).mid(m_widths.size());
    if (!left.isEmpty()) {
        const QString names = visibleText(left.join(", "_L1));
        printText(u"and %1: %2\n"_s.arg(counted(left.size(), u"more column"_s), names));
    }
}
