#include "actions/shared/params/scanned_columns.h"

#include "base/mapped.h"

#include <QHash>

#include <limits>

namespace corvanta {

namespace {

constexpr qint64 kSampleRows = 10'000;

ValueKind kindOf(values::Kind kind)
{
    // Both lists have the same order.
    static_assert(static_cast<int>(values::Kind::Time) == static_cast<int>(ValueKind::Time));
    return static_cast<ValueKind>(kind);
}

} // namespace

/// A sample is enough to show kinds; only a whole scan may decide what is written.
qint64 rowsToScan(ActionParameters::KindExtent extent)
{
    return extent == ActionParameters::KindExtent::Sample ? kSampleRows
                                                          : std::numeric_limits<qint64>::max();
}

QVector<ColumnKind> kindsOf(const QStringList &names, std::span<const values::ColumnScan> scans)
{
    QHash<QString, int> counts;
    for (const QString &name : names) {
        ++counts[name];
    }
    QVector<ColumnKind> kinds;
    for (size_t i = 0; i < scans.size(); ++i) {
        const QString &name = names[static_cast<qsizetype>(i)];
        const values::ColumnResult found =
            counts.value(name) == 1 ? scans[i].result() : values::ColumnResult();
        kinds << ColumnKind{name,
                            kindOf(found.kind),
                            found.letter,
                            found.exception,
                            found.exceptionPlace,
                            kindOf(found.before),
                            found.isUtc};
    }
    return kinds;
}

/// In the form of the parameter `types` of readers of texts.
QString lettersOf(const QVector<ColumnKind> &columns)
{
    return mapped<QStringList>(
               columns,
               [](const ColumnKind &column) { return QString(QLatin1Char(column.letter)); })
        .join(u',');
}

} // namespace corvanta
