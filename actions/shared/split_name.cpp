#include "actions/shared/split_name.h"

#include "codecs/encoding/hex_digit.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

// File systems allow 255 bytes for a name, which also holds the name given by the user.
constexpr qsizetype kMaxBytes = 200;
constexpr qsizetype kDigestDigits = 16;

/// A percent sign that a reader of the name would mistake for the start of percentForm().
bool isEscapeLike(const QString &value, qsizetype at)
{
    return value[at] == u'%' && at + 2 < value.size() && hexDigit(value[at + 1].unicode()) >= 0 &&
           hexDigit(value[at + 2].unicode()) >= 0;
}

/// Characters that some file system refuses in a name.
bool isReserved(QChar c)
{
    return c < u' ' || c == u'\x7F' || u"<>:\"/\\|?*"_s.contains(c);
}

/// "%2F": percent sign and two hexadecimal digits. Reserved characters are all below U+0080.
QString percentForm(QChar c)
{
    return u'%' + QString::number(c.unicode(), 16).toUpper().rightJustified(2, u'0');
}

/// The longest start of `text` that takes at most `bytes` bytes of UTF-8.
QString cutToBytes(QString text, qsizetype bytes)
{
    // A unit has at least one byte. Half a surrogate pair at the end has no UTF-8.
    text.truncate(bytes);
    while (text.toUtf8().size() > bytes || (!text.isEmpty() && text.back().isHighSurrogate())) {
        text.chop(1);
    }
    return text;
}

} // namespace

/// Different values have different names: escapes can be undone, and a cut name ends in a digest.
QString fileNamePart(const QString &value)
{
    QString part = u""_s; // never null
    for (qsizetype i = 0; i < value.size(); ++i) {
        part += isReserved(value[i]) || isEscapeLike(value, i) ? percentForm(value[i])
                                                               : QString(value[i]);
    }
    if (part == "."_L1 || part == ".."_L1) {
        part.replace(u'.', percentForm(u'.'));
    }
    if (part.toUtf8().size() <= kMaxBytes) {
        return part;
    }
    // Long values with the same start still have different names.
    const QByteArray digest =
        QCryptographicHash::hash(value.toUtf8(), QCryptographicHash::Sha256).toHex();
    return cutToBytes(part, kMaxBytes - kDigestDigits - 1) + u'~' +
           QLatin1StringView(digest.first(kDigestDigits));
}

/// The ending stays last, because it shows programs what the file is.
QString withPartBeforeExtension(const QString &name, const QString &part)
{
    const qsizetype lastSlash = qMax(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\'));
    const qsizetype dot = name.lastIndexOf(u'.');
    QString result = name;
    return result.insert(dot > lastSlash ? dot : name.size(), part);
}

} // namespace corvanta
