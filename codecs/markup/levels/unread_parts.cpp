// Lines are counted from 1 by the reader, columns from 0: people count both from 1.
#include "codecs/markup/levels/unread_parts.h"

using namespace Qt::StringLiterals;

namespace corvanta::markup {

QString placeText(qint64 line, qint64 column)
{
    return u"line %1, column %2"_s.arg(QString::number(line), QString::number(column + 1));
}

} // namespace corvanta::markup
