// Names of ranges are checked as ECMA-376 part 1, 18.2.5, and the grammar of formulas (18.17.2.5)
// require.
#include "codecs/xlsx/name_rules.h"

#include "base/text/sheet_name.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/cell_range.h"

#include <QRegularExpression>

#include <algorithm>

namespace corvanta::xlsx {

namespace {

constexpr qsizetype kMaxRangeNameUnits = 255;

/// What neither the name of a sheet nor that of a range may have.
QVector<NameFault> commonFaults(const QString &name)
{
    QVector<NameFault> faults;
    if (name.trimmed().isEmpty()) {
        return {NameFault::Empty};
    }
    if (!std::ranges::all_of(name, isSheetNameCharacter)) {
        faults << NameFault::Character;
    }
    if (name.startsWith(u'\'') || name.endsWith(u'\'')) {
        faults << NameFault::Quote;
    }
    if (isReservedSheetName(name)) {
        faults << NameFault::Reserved;
    }
    return faults;
}

/// Whether a defined name reads as a cell of the sheet (A1, XFD1048576) or as R1C1, R or C.
bool isReference(const QString &name)
{
    static const QRegularExpression kRowColumn(QStringLiteral("^(?:R\\d*(?:C\\d*)?|C\\d*)$"),
                                               QRegularExpression::CaseInsensitiveOption);
    const auto cell = parseRange(name.toUpper().toUtf8());
    return kRowColumn.match(name).hasMatch() ||
           (cell && cell->firstRow <= sheet::kMaxRows &&
            cell->firstColumn < static_cast<int>(sheet::kMaxColumns));
}

/// Surrogates stand for letters beyond U+FFFF, which have no test of their own here.
bool isNameUnit(QChar c)
{
    return c.isLetterOrNumber() || c.isMark() || c.isSurrogate() || c == u'_' || c == u'.';
}

/// Whether `name`, which is not empty, has the characters of a defined name.
bool hasNameForm(const QString &name)
{
    return (name[0].isLetter() || name[0].isSurrogate() || name[0] == u'_') &&
           std::all_of(name.begin(), name.end(), isNameUnit);
}

} // namespace

QVector<NameFault> sheetNameFaults(const QString &name, const QStringList &others)
{
    QVector<NameFault> faults = commonFaults(name);
    if (!sameButCase(name, others).isEmpty()) {
        faults << NameFault::OnlyCase;
    }
    return faults;
}

QVector<NameFault> rangeNameFaults(const QString &name)
{
    QVector<NameFault> faults = commonFaults(name);
    if (!faults.isEmpty()) {
        return faults;
    }
    if (!hasNameForm(name)) {
        faults << NameFault::NotAName;
    } else if (isReference(name)) {
        faults << NameFault::Reference;
    }
    if (name.size() > kMaxRangeNameUnits) {
        faults << NameFault::TooLong;
    }
    return faults;
}

QString sameButCase(const QString &name, const QStringList &names)
{
    const auto found = std::find_if(names.begin(), names.end(), [&](const QString &other) {
        return other != name && other.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == names.end() ? QString() : *found;
}

} // namespace corvanta::xlsx
