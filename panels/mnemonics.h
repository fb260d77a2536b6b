// Chooses the letters that move the focus to a field together with Alt, each at most once per
// panel.
//
// The letters come from the translated texts, so no translator needs to choose them. Threads: one
// at a time.
#pragma once
#include <QSet>
#include <QString>

namespace corvanta {

class Mnemonics
{
public:
    /// `text` with an ampersand before the first letter or digit that is still free, preferably at
    /// the start of a word. Without such a letter the text has no mnemonic. Ampersands of `text`
    /// are kept as visible characters.
    QString assign(const QString &text);
    /// Take the letter that a text of the host has, such as a menu: two with one letter would get
    /// the key in turn.
    void reserve(const QString &text);

private:
    /// Position of the letter to use; -1: none.
    qsizetype findFree(const QString &text) const;
    bool isFree(QChar letter) const
    {
        return letter.isLetterOrNumber() && !m_used.contains(letter.toLower());
    }

    QSet<QChar> m_used; // in lower case
};

} // namespace corvanta
