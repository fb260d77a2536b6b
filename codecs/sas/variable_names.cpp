// The rules are those of SAS for names of variables (SAS Language Reference, "Rules for Words and
// Names"); VALIDVARNAME=ANY in SAS relaxes them.
#include "codecs/sas/variable_names.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace corvanta::sas {

namespace {

bool isAsciiDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isAsciiLetterOrDigit(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

bool isReserved(const QByteArray &name)
{
    constexpr const char *kReserved[] = {"_N_", "_ERROR_", "_NUMERIC_", "_CHARACTER_", "_ALL_"};
    const QByteArray upper = name.toUpper();
    return std::any_of(std::begin(kReserved), std::end(kReserved),
                       [&](const char *word) { return upper == word; });
}

/// Gives each name once.
class Names
{
public:
    explicit Names(Qt::CaseSensitivity sensitivity)
        : m_sensitivity(sensitivity)
    {
    }
    bool add(const QByteArray &name) { return m_used.insert(key(name)).second; }
    QByteArray next(const QByteArray &name, qsizetype maxBytes)
    {
        // Continues after the last number of the same name, so that many equal ones stay cheap.
        int &number = m_numbers[key(name)];
        number = std::max(number, 1);
        QByteArray unique;
        do {
            const QByteArray digits = QByteArray::number(++number);
            unique = cutUtf8(name, maxBytes - digits.size()) + digits;
        } while (!add(unique));
        return unique;
    }

private:
    QByteArray key(const QByteArray &name) const
    {
        return m_sensitivity == Qt::CaseSensitive ? name : name.toUpper();
    }

    Qt::CaseSensitivity m_sensitivity;
    std::unordered_set<QByteArray> m_used;
    std::unordered_map<QByteArray, int> m_numbers;
};

} // namespace

QByteArray cutUtf8(const QByteArray &text, qsizetype bytes)
{
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && (static_cast<uchar>(text[bytes]) & 0xC0) == 0x80) {
        --bytes;
    }
    return text.first(bytes);
}

QByteArray validName(const QString &column, qsizetype maxBytes)
{
    QByteArray name;
    // Decomposed, an accent is a character of its own.
    for (const QChar c : column.normalized(QString::NormalizationForm_KD)) {
        if (c.isMark()) {
            continue;
        }
        const bool isKept = isAsciiLetterOrDigit(c.unicode());
        // One "_" for a surrogate pair.
        if (isKept || !c.isLowSurrogate()) {
            name += isKept ? static_cast<char>(c.unicode()) : '_';
        }
    }
    if (!name.isEmpty() && isAsciiDigit(name.front())) {
        name.prepend('_');
    }
    name = name.first(std::min(name.size(), maxBytes));
    return isReserved(name) ? name.first(std::min(name.size(), maxBytes - 1)) + 'X' : name;
}

std::vector<size_t> makeUnique(std::vector<QByteArray> &names, const QStringList &columns,
                               Qt::CaseSensitivity sensitivity, qsizetype maxBytes)
{
    Names used(sensitivity);
    std::vector<bool> isFree(names.size());
    for (const bool isUnchanged : {true, false}) {
        for (size_t i = 0; i < names.size(); ++i) {
            if ((names[i] == columns[static_cast<qsizetype>(i)].toUtf8()) == isUnchanged) {
                isFree[i] = !names[i].isEmpty() && used.add(names[i]);
            }
        }
    }
    std::vector<size_t> changed;
    for (size_t i = 0; i < names.size(); ++i) {
        if (isFree[i]) {
            continue;
        }
        names[i] = names[i].isEmpty() ? 'C' + QByteArray::number(i + 1) : names[i];
        names[i] = used.add(names[i]) ? names[i] : used.next(names[i], maxBytes);
        changed.push_back(i);
    }
    return changed;
}

} // namespace corvanta::sas
