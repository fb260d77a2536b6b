#include "actions/shared/input_sample.h"

#include "actions/shared/file_series.h"
#include "corvanta/main_ui.h"

#include <numeric>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The sample is also limited by its number of records; this bounds files of few large records.
constexpr qint64 kSampleBytes = qint64(64) << 20;
/// A document of many formats in one may repeat hundreds of parts.
constexpr qsizetype kMaxReportedPaths = 20;

/// The first of `paths`, and how many more there are.
QString listOf(const QStringList &paths)
{
    const qsizetype left = paths.size();
    const QString more =
        left > kMaxReportedPaths ? u", and %1 more"_s.arg(left - kMaxReportedPaths) : QString();
    return paths.mid(0, kMaxReportedPaths).join(u", "_s) + more;
}

/// Log why values of the document appear in no column.
void reportLeftOut(const markup::SampledDocument &document, const markup::SampledTable &chosen)
{
    if (!chosen.leftOut.isEmpty()) {
        MainUI::addLog(MainUI::Info, u"Repeated parts of the records that are not read: %1\n"_s.arg(
                                         listOf(chosen.leftOut)));
    }
    if (!document.outside.isEmpty()) {
        MainUI::addLog(MainUI::Info, u"Values outside of the records that are not read: %1\n"_s.arg(
                                         listOf(document.outside)));
    }
    if (!document.sameNames.isEmpty()) {
        MainUI::addLog(MainUI::Warning,
                       u"Warning: names that differ only in letter case are distinguished by their "
                       "order in each record: %1\n"_s.arg(listOf(document.sameNames)));
    }
    if (document.unnameable.any()) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: elements whose names no path can express are not read (count in "
            "the sample: %1, first '%2')\n"_s.arg(QString::number(document.unnameable.count()),
                                                  document.unnameable.first()));
    }
    if (document.beyondLimits.any()) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: elements beyond the limits of the sample are not read (count in "
            "the sample: %1, first '%2')\n"_s.arg(QString::number(document.beyondLimits.count()),
                                                  document.beyondLimits.first()));
    }
}

} // namespace

InputSample::InputSample(const ActionItem &action, const QString &pattern)
    : m_name(namesOfPattern(action, pattern).value(0))
    , m_file(action.globalParameters(), m_name, true) // shared: a writer may have the file open
{
    m_file.keepPipe();
}

qint64 InputSample::read(void *buffer, qint64 n)
{
    // Returns 0, the end, once the position has reached the limit.
    return m_file.read(buffer, std::min(n, kSampleBytes - m_file.position()));
}

/// Tables count from 1 in messages and on the command line.
void logNoSuchTable(int table, size_t count)
{
    MainUI::addLog(MainUI::Error,
                   u"Error: there is no table number %1 among the %2 of the file\n"_s.arg(
                       QString::number(table + 1), QString::number(count)));
}

/// A negative number asks for the largest table.
const markup::SampledTable *chooseTable(const markup::SampledDocument &document, int table)
{
    const size_t index = table < 0 ? document.largest : static_cast<size_t>(table);
    if (index >= document.tables.size()) {
        logNoSuchTable(table, document.tables.size());
        return nullptr;
    }
    const markup::SampledTable &chosen = document.tables[index];
    reportLeftOut(document, chosen);
    return &chosen;
}

/// A table is the chosen one if it has the levels of the parameters.
QVector<InputTable> listedTables(const markup::SampledDocument &document,
                                 const std::vector<markup::Level> &levels)
{
    QVector<InputTable> listed;
    for (const markup::SampledTable &table : document.tables) {
        // A table's columns are the items of all its levels.
        const auto add = [](qsizetype sum, const markup::Level &level) {
            return sum + static_cast<qsizetype>(level.items.size());
        };
        const qsizetype columns =
            std::accumulate(table.levels.begin(), table.levels.end(), qsizetype(0), add);
        listed.push_back({table.path, table.rows, columns, table.beginning.join(u", "_s),
                          table.levels == levels});
    }
    return listed;
}

} // namespace corvanta
