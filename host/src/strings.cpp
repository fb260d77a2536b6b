#include "corvanta/strings.h"

using namespace Qt::StringLiterals;

QString stringFromStringList(const QStringList &list, int maxTexts)
{
    QStringList quoted;
    for (const QString &text : list.mid(0, maxTexts)) {
        quoted << u'\'' + text + u'\'';
    }
    return quoted.join(", "_L1) + (list.size() > maxTexts ? ", ..."_L1 : ""_L1);
}

QString detach(const QString &text)
{
    return text.isNull() ? QString() : QString(text.constData(), text.size());
}
