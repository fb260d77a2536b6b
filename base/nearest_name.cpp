// Edit distances of names. Names are short and few, so nothing here is made to be fast.
#include "base/nearest_name.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A longer text is not a misspelled name, and comparing it would take long.
constexpr qsizetype kMaxChars = 100;

/// From this size on, the beginning of a name is enough to mean it: "sep" for "separator".
constexpr qsizetype kMinBeginning = 3;

/// Number of single changes that make `b` of `a`; two neighbours that are swapped count as one.
int distance(const QString &a, const QString &b)
{
    const auto columns = static_cast<size_t>(b.size()) + 1;
    // Three rows of the table: a swap needs the one before the last.
    std::vector<int> beforeLast(columns);
    std::vector<int> last(columns);
    std::vector<int> row(columns);
    for (size_t j = 0; j < columns; ++j) {
        row[j] = static_cast<int>(j);
    }
    for (qsizetype i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = static_cast<int>(i);
        for (qsizetype j = 1; j <= b.size(); ++j) {
            const auto at = static_cast<size_t>(j);
            const int replaced = last[at - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[at] = std::min({replaced, last[at] + 1, row[at - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[at] = std::min(row[at], beforeLast[at - 2] + 1);
            }
        }
    }
    return row.back();
}

qsizetype commonBeginning(const QString &a, const QString &b)
{
    return std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
}

/// How far a name is from another one; the smaller value is nearer.
struct Rank
{
    int changes = 0; ///< those of distance(); at most one when one name begins with the other
    qsizetype notEqual = 0; ///< negative length of the equal beginning
    int allChanges = 0;

    auto operator<=>(const Rank &) const = default; // NOLINT(modernize-use-nullptr): no pointer
};

Rank rankOf(const QString &name, const QString &candidate)
{
    const QString a = name.left(kMaxChars).toLower();
    const QString b = candidate.left(kMaxChars).toLower();
    const int changes = distance(a, b);
    const qsizetype equal = commonBeginning(a, b);
    const bool isBeginning = equal >= kMinBeginning && equal == std::min(a.size(), b.size());
    return {isBeginning ? std::min(changes, 1) : changes, -equal, changes};
}

/// Whether this many changes are a typing error in a name of `chars` characters. If all characters
/// differ, it is another name.
bool isClose(int changes, qsizetype chars)
{
    return changes < chars && changes <= std::max<qsizetype>(1, chars / 3);
}

} // namespace

QString nearestName(const QString &name, const QStringList &known)
{
    QString nearest;
    Rank best;
    for (const QString &candidate : known) {
        const Rank rank = rankOf(name, candidate);
        if (nearest.isEmpty() || rank < best) {
            nearest = candidate;
            best = rank;
        }
    }
    return isClose(best.changes, std::max(name.size(), nearest.size())) ? nearest : QString();
}

QString nearestNameHint(const QString &name, const QStringList &known)
{
    const QString nearest = nearestName(name, known);
    return nearest.isEmpty() ? QString() : u"; the nearest known name is '%1'"_s.arg(nearest);
}

QString missingColumnReason(const QString &name, const QStringList &columns)
{
    const QString hint = nearestNameHint(name, columns);
    return hint.isEmpty() ? QString() : u"the input has no such column"_s + hint;
}

} // namespace corvanta
