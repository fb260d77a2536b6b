#include "panels/mnemonics.h"

namespace corvanta {

qsizetype Mnemonics::findFree(const QString &text) const
{
    // The first letter of a word is easier to find than one inside.
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool startsWord = i == 0 || text[i - 1].isSpace();
        if (startsWord && isFree(text[i])) {
            return i;
        }
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isFree(text[i])) {
            return i;
        }
    }
    return -1;
}

void Mnemonics::reserve(const QString &text)
{
    const qsizetype mark = text.indexOf(u'&');
    if (mark >= 0 && mark + 1 < text.size()) {
        m_used.insert(text[mark + 1].toLower());
    }
}

QString Mnemonics::assign(const QString &text)
{
    const qsizetype chosen = findFree(text);
    QString marked;
    for (qsizetype i = 0; i < text.size(); ++i) {
        // A visible ampersand is written twice.
        if (i == chosen || text[i] == u'&') {
            marked += u'&';
        }
        marked += text[i];
    }
    if (chosen >= 0) {
        m_used.insert(text[chosen].toLower());
    }
    return marked;
}

} // namespace corvanta
