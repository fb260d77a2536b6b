// Helpers of panels for lists and texts.
#include "corvanta/lists.h"

#include "base/mapped.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

QString stringFromStringList(const QStringList &list, int maxTexts)
{
    const auto inQuotes = [](const QString &text) { return u'\'' + text + u'\''; };
    const auto quoted = corvanta::mapped<QStringList>(list.mid(0, maxTexts), inQuotes);
    return quoted.join(", "_L1) + (list.size() > maxTexts ? ", ..."_L1 : ""_L1);
}

QStringList wordsOf(const char *text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

QString detach(const QString &text)
{
    // A copy of a QString shares its memory; a new one from its characters does not.
    return text.isNull() ? QString() : QString(text.constData(), text.size());
}

void sortIntInt(int *keys, int *values, int from, int to)
{
    // As pairs, so that values move with their keys; panels sort short lists.
    std::vector<std::pair<int, int>> pairs;
    for (int i = from; i <= to; ++i) {
        pairs.emplace_back(keys[i], values[i]);
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    for (int i = from; i <= to; ++i) {
        std::tie(keys[i], values[i]) = pairs[static_cast<size_t>(i - from)];
    }
}
