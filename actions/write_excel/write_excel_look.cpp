// The parameters of the look:
//
//     headerStyle    bold | fill | bold,fill | 1 (both) | 0 (none)
//     columnWidths   auto | 12,,30.5            in column order; empty: the default width
//     columnFormats  price=#,##0.00 "EUR"       a name of a column, "=", a number format
//     overflow       newSheet
//
// A format contains no "=" but for a condition; a column may have one in its name. So an entry of
// columnFormats is split after the name of a column, and without one at its first "=".
#include "actions/write_excel/write_excel_look.h"

#include "base/mapped.h"
#include "codecs/sheet/number_format.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr char16_t kSeparator = u',';

/// The words of headerStyle; none for "0", which is what a switch would have.
QStringList stylesOf(const QString &text)
{
    QStringList words;
    for (const QString &word : text.split(kSeparator, Qt::SkipEmptyParts)) {
        words << word.trimmed();
    }
    if (text == u"1") {
        return QStringList() << u"bold"_s << u"fill"_s;
    }
    return text == u"0" ? QStringList() : words;
}

/// A width, or 0 for an empty text; nothing for another text.
std::optional<double> widthOf(const QString &text)
{
    constexpr double kWidest = 255; // that programs accept
    bool isNumber = true;
    const QString trimmed = text.trimmed();
    const double width = trimmed.isEmpty() ? 0 : trimmed.toDouble(&isNumber);
    const bool isWidth = isNumber && ((width >= 1 && width <= kWidest) || trimmed.isEmpty());
    return isWidth ? std::optional(width) : std::nullopt;
}

const char *textOf(sheet::FormatFault fault)
{
    switch (fault) {
    case sheet::FormatFault::None:
        return nullptr;
    case sheet::FormatFault::Empty:
        return QT_TRANSLATE_NOOP("Problems", "'%1' has no number format after the column's name");
    case sheet::FormatFault::Long:
        return QT_TRANSLATE_NOOP("Problems",
                                 "the number format in '%1' has more than 255 characters");
    case sheet::FormatFault::Character:
        return QT_TRANSLATE_NOOP("Problems", "the number format in '%1' has a control character");
    case sheet::FormatFault::Quote:
        return QT_TRANSLATE_NOOP("Problems", "the number format in '%1' has a text without its "
                                             "closing quote");
    case sheet::FormatFault::Bracket:
        return QT_TRANSLATE_NOOP("Problems", "the number format in '%1' has a [ without its ]");
    case sheet::FormatFault::Letter:
        return QT_TRANSLATE_NOOP("Problems", "the number format in '%1' has letters without a "
                                             "meaning: write texts in double quotes");
    case sheet::FormatFault::Sections:
        return QT_TRANSLATE_NOOP("Problems",
                                 "the number format in '%1' has more than four sections");
    case sheet::FormatFault::End:
        break;
    }
    return QT_TRANSLATE_NOOP("Problems", "the number format in '%1' ends with \\, _ or *, which "
                                         "need a character after them");
}

/// The positions of "=" in an entry.
QVector<qsizetype> splitsOf(const QString &entry)
{
    QVector<qsizetype> splits;
    for (qsizetype at = entry.indexOf(u'='); at >= 0; at = entry.indexOf(u'=', at + 1)) {
        splits << at;
    }
    return splits;
}

sheet::FormatFault faultAfter(const QString &entry, qsizetype split)
{
    return sheet::faultOfCode(entry.mid(split + 1).toStdU16String());
}

/// What is wrong with an entry wherever its name ends; null if nothing is.
const char *entryProblem(const QString &entry)
{
    const QVector<qsizetype> splits = splitsOf(entry);
    if (splits.isEmpty() || splits.first() == 0) {
        return QT_TRANSLATE_NOOP("Problems", "'%1' does not have the form COLUMN=FORMAT");
    }
    const bool isValid = std::any_of(splits.begin(), splits.end(), [&](qsizetype split) {
        return faultAfter(entry, split) == sheet::FormatFault::None;
    });
    return isValid ? nullptr : textOf(faultAfter(entry, splits.first()));
}

/// Where the name of an entry ends.
// The columns are known only with the first row; without them the first split counts.
qsizetype splitOf(const QString &entry, const QStringList &columns)
{
    const QVector<qsizetype> splits = splitsOf(entry);
    const auto found = std::find_if(splits.begin(), splits.end(), [&](qsizetype split) {
        return columns.contains(entry.left(split)) &&
               faultAfter(entry, split) == sheet::FormatFault::None;
    });
    return found != splits.end() ? *found : splits.value(0, entry.size());
}

} // namespace

QVector<LookProblem> lookProblems(const WriteExcelParams &params)
{
    QVector<LookProblem> problems;
    for (const QString &style : stylesOf(params.headerStyle)) {
        if (style != u"bold" && style != u"fill") {
            problems.append(
                {kHeaderStyle,
                 QT_TRANSLATE_NOOP("Problems", "'%1' is not a style (bold, fill or bold,fill)"),
                 style});
        }
    }
    // An empty text is one empty width, which is allowed.
    for (const QString &width : params.columnWidths.split(kSeparator)) {
        if (!measuresWidths(params) && !widthOf(width)) {
            problems.append({kColumnWidths,
                             QT_TRANSLATE_NOOP("Problems", "'%1' is not a width (auto, or numbers "
                                                           "from 1 to 255, separated by commas)"),
                             width});
        }
    }
    if (!params.overflow.isEmpty() && params.overflow != u"newSheet") {
        problems.append({kOverflow,
                         QT_TRANSLATE_NOOP("Problems", "'%1' is not allowed (newSheet or empty)"),
                         params.overflow});
    }
    for (const QString &entry : params.columnFormats) {
        if (const char *const problem = entryProblem(entry)) {
            problems.append({kColumnFormats, problem, entry});
        }
    }
    return problems;
}

bool measuresWidths(const WriteExcelParams &params)
{
    return params.columnWidths == u"auto";
}

/// Empty if the widths are measured.
std::vector<double> givenWidths(const WriteExcelParams &params)
{
    const bool isGiven = !params.columnWidths.isEmpty() && !measuresWidths(params);
    const QStringList texts = isGiven ? params.columnWidths.split(kSeparator) : QStringList();
    return mapped<std::vector<double>>(
        texts, [](const QString &text) { return widthOf(text).value_or(0); });
}

QStringList formattedColumns(const WriteExcelParams &params, const QStringList &columns)
{
    return mapped<QStringList>(params.columnFormats, [&](const QString &entry) {
        return entry.left(splitOf(entry, columns));
    });
}

xlsx::SheetLook sheetLook(const WriteExcelParams &params, const QStringList &columns)
{
    xlsx::SheetLook look;
    if (params.firstLineContainsColumnNames) {
        const QStringList styles = stylesOf(params.headerStyle);
        look.hasBoldHeader = styles.contains(u"bold"_s);
        look.hasFilledHeader = styles.contains(u"fill"_s);
        look.freezesHeader = params.freezeHeader;
        look.hasFilter = params.autoFilter;
    }
    look.mayContinue = !params.overflow.isEmpty();
    if (params.columnFormats.isEmpty()) {
        return look;
    }
    // The last entry for a column counts; columns of one name get the same format.
    look.formats = QStringList(columns.size());
    for (const QString &entry : params.columnFormats) {
        const qsizetype split = splitOf(entry, columns);
        for (qsizetype i = 0; i < columns.size(); ++i) {
            if (columns.at(i) == entry.left(split)) {
                look.formats.replace(i, entry.mid(split + 1));
            }
        }
    }
    return look;
}

} // namespace corvanta
