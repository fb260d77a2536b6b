// Escapes of characters that have no visible form.
#include "visible_text.h"

using namespace Qt::StringLiterals;

namespace {

/// The code point as \xHH, or as \uHHHH with as many digits as it needs.
QString numericEscape(char32_t c)
{
    const QString digits = QString::number(c, 16);
    return c < 0x100 ? u"\\x"_s + digits.rightJustified(2, u'0')
                     : u"\\u"_s + digits.rightJustified(4, u'0');
}

/// The escape for a character that cannot be shown.
QString escape(char32_t c)
{
    switch (c) {
    case '\n':
        return u"\\n"_s;
    case '\r':
        return u"\\r"_s;
    case '\t':
        return u"\\t"_s;
    default:
        return numericEscape(c);
    }
}

/// Characters that a terminal obeys or hides instead of showing them.
bool isInvisible(char32_t c)
{
    const QChar::Category category = QChar::category(c);
    return category == QChar::Other_Control || category == QChar::Other_Format ||
           category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
}

/// Replaces what is invisible, except the characters `kept`.
QString visible(const QString &text, const QString &kept)
{
    QString shown;
    forEachCodePoint(text, [&](char32_t c) {
        const QString one = QString::fromUcs4(&c, 1);
        shown += isInvisible(c) && !kept.contains(one) ? escape(c) : one;
    });
    return shown;
}

} // namespace

QString visibleText(const QString &text)
{
    return visible(text, QString());
}

QString visibleLines(const QString &text)
{
    return visible(text, u"\n\t"_s);
}
