// Chooses the inputs of a shard.
#include "cli/batch/shard.h"

#include <queue>

#include <algorithm>
#include <numeric>
#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr auto kTaskId = "SLURM_ARRAY_TASK_ID";
constexpr auto kTaskCount = "SLURM_ARRAY_TASK_COUNT";

/// The value of an environment variable that is a number.
std::optional<qsizetype> numberIn(const char *variable)
{
    bool isNumber = false;
    const qsizetype number = qEnvironmentVariable(variable).toLongLong(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

/// The shard of a task of a Slurm array. A part of an array (--array=3,7) has other counts than the
/// whole one: to run it as a whole would repeat or lose inputs.
CommandResult<Shard> shardOfTask()
{
    const auto id = numberIn(kTaskId);
    const auto count = numberIn(kTaskCount);
    if (!id || !count) {
        return Shard{};
    }
    const qsizetype first = numberIn("SLURM_ARRAY_TASK_MIN").value_or(1);
    const qsizetype last = numberIn("SLURM_ARRAY_TASK_MAX").value_or(first + *count - 1);
    const bool isWholeArray = (first == 0 || first == 1) && last - first + 1 == *count;
    if (!isWholeArray || *id < first || *id > last) {
        return badUsage(
            u"%1 is %2 and %3 is %4: this is not an array 0-N or 1-N; give --shard I/N"_s.arg(
                QLatin1StringView(kTaskId), QString::number(*id), QLatin1StringView(kTaskCount),
                QString::number(*count)));
    }
    return Shard{*id - first + 1, *count};
}

/// The number of the shard of each input: the largest input first, each to the shard with the
/// fewest bytes.
QVector<qsizetype> balancedShards(const QVector<InputFile> &all, qsizetype count)
{
    QVector<qsizetype> order(all.size());
    std::iota(order.begin(), order.end(), qsizetype(0));
    std::ranges::stable_sort(
        order, [&](qsizetype a, qsizetype b) { return all[a].bytes() > all[b].bytes(); });
    using Load = std::pair<qint64, qsizetype>; // bytes, shard: of equal loads the first shard
    std::priority_queue<Load, std::vector<Load>, std::greater<>> loads;
    for (qsizetype shard = 1; shard <= std::min(count, all.size()); ++shard) {
        loads.emplace(0, shard);
    }
    QVector<qsizetype> shards(all.size());
    for (const qsizetype i : order) {
        const auto [bytes, shard] = loads.top();
        loads.pop();
        shards[i] = shard;
        // Empty files cost something too.
        loads.emplace(bytes + all[i].bytes() + 1, shard);
    }
    return shards;
}

} // namespace

/// --shard decides, then the variables of a Slurm array; without both there is one shard.
CommandResult<Shard> Shard::of(const CommandLine &line)
{
    const QString text = line.value(u"--shard"_s, QString());
    if (text.isEmpty() && !line.values.contains(u"--shard"_s)) {
        return shardOfTask();
    }
    bool areNumbers[2] = {};
    const QStringList parts = text.split(u'/');
    const Shard shard{parts.value(0).toLongLong(&areNumbers[0]),
                      parts.value(1).toLongLong(&areNumbers[1])};
    if (parts.size() != 2 || !areNumbers[0] || !areNumbers[1] || shard.number < 1 ||
        shard.number > shard.count) {
        return badUsage(
            u"--shard: invalid value '%1' (expected I/N with I from 1 to N, for example 2/10)"_s
                .arg(text));
    }
    return shard;
}

QString Shard::text() const
{
    return u"%1/%2"_s.arg(QString::number(number), QString::number(count));
}

/// In turn, and so by the place in the list only: the shard of an input does not depend on what is
/// done already.
QVector<qsizetype> shardsOf(const QVector<InputFile> &all, qsizetype count, bool balancesSize)
{
    if (balancesSize) {
        return balancedShards(all, count);
    }
    QVector<qsizetype> shards(all.size());
    for (qsizetype i = 0; i < all.size(); ++i) {
        shards[i] = i % count + 1;
    }
    return shards;
}

QVector<InputFile> Shard::inputsOf(const QVector<InputFile> &all, bool balancesSize) const
{
    const QVector<qsizetype> shards = shardsOf(all, count, balancesSize);
    QVector<InputFile> own;
    for (qsizetype i = 0; i < all.size(); ++i) {
        if (shards[i] == number) {
            own << all[i];
        }
    }
    return own;
}
