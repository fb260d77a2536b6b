// The rules are those of spreadsheet programs when a user renames a sheet; the standard of the
// format requires only the length and unique names.
#include "base/text/sheet_name.h"

#include <algorithm>
#include <functional>

namespace corvanta {

bool isSheetNameCharacter(QChar c)
{
    return c >= u' ' && !QStringView(u"/\\?*[]:").contains(c);
}

bool isReservedSheetName(const QString &name)
{
    // Sheets with the history of shared workbooks have this name.
    return name.compare(QStringLiteral("History"), Qt::CaseInsensitive) == 0;
}

QString shortSheetName(const QString &name, const QString &suffix)
{
    QString cut = name.left(kMaxSheetNameUnits - suffix.size());
    const bool splitsPair =
        cut.size() < name.size() && !cut.isEmpty() && cut.back().isHighSurrogate();
    cut.chop(splitsPair ? 1 : 0);
    return cut + suffix;
}

QString validSheetName(const QString &name)
{
    QString valid = shortSheetName(name);
    std::ranges::replace_if(valid, std::not_fn(isSheetNameCharacter), QChar(u'_'));
    if (valid.trimmed().isEmpty()) {
        return QStringLiteral("_");
    }
    for (QChar *const end : {&valid.front(), &valid.back()}) {
        *end = *end == u'\'' ? QChar(u'_') : *end;
    }
    return isReservedSheetName(valid) ? valid + u'_' : valid;
}

} // namespace corvanta
