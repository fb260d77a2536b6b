#include "base/replaced_characters.h"

using namespace Qt::StringLiterals;

namespace corvanta {

QString replacedMessage(const ReplacedCharacters &replaced, const QString &file,
                        const QString &column)
{
    const QString where =
        replaced.firstRow > 0 ? u"row %1"_s.arg(QString::number(replaced.firstRow)) : u"the name"_s;
    const QString of = column.isEmpty() ? QString() : u" of column '%1'"_s.arg(column);
    return u"Warning: characters that the file '%1' cannot hold are replaced by U+FFFD (count: %2, "
           "first in %3%4)\n"_s.arg(file, QString::number(replaced.count), where, of);
}

} // namespace corvanta
