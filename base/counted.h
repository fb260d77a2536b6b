// Counts in messages: "1 text", "2 texts".
#pragma once
#include <QString>

namespace corvanta {

/// The number and the noun, which forms its plural with "s".
inline QString counted(qint64 count, const QString &noun)
{
    return QString::number(count) + u' ' + noun + (count == 1 ? QString() : QStringLiteral("s"));
}

/// The verb after such a count.
inline QString isOrAre(qint64 count)
{
    return count == 1 ? QStringLiteral("is") : QStringLiteral("are");
}
inline QString hasOrHave(qint64 count)
{
    return count == 1 ? QStringLiteral("has") : QStringLiteral("have");
}

} // namespace corvanta
