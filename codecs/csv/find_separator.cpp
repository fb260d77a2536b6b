// Each candidate splits the beginning into records. The right one gives them all the same number of
// fields.
#include "codecs/csv/find_separator.h"

#include "codecs/csv/record_reader.h"

#include <algorithm>
#include <vector>

namespace corvanta::csv {

namespace {

/// In the order of preference.
constexpr char kCandidates[] = {',', ';', '\t', '|'};

/// How a candidate splits the beginning.
struct Split
{
    size_t fields = 0;  // of the first record
    size_t records = 0; // that are not empty lines
    size_t regular = 0; // records with that number of fields

    /// Records that do not fit, per record.
    double irregularity() const
    {
        return records == 0 ? 1.0
                            : static_cast<double>(records - regular) / static_cast<double>(records);
    }
};

bool isEmptyLine(std::span<const Field> fields)
{
    return fields.size() == 1 && fields[0].size == 0 && !fields[0].isQuoted;
}

/// The numbers of fields of the records that are complete. A fault ends them.
std::vector<size_t> fieldCounts(std::string_view beginning, bool isWhole, const Dialect &dialect)
{
    MemorySource source(QByteArrayView(beginning.data(), static_cast<qsizetype>(beginning.size())));
    RecordReader reader(source, dialect, {beginning.size() + 1, beginning.size() + 1});
    std::vector<size_t> counts;
    bool isCut = !isWhole;
    for (auto found = reader.next(); found && *found; found = reader.next()) {
        isCut = !isWhole && !reader.record().ends_with(dialect.endsLinesWithCr ? '\r' : '\n');
        if (!isEmptyLine(reader.fields())) {
            counts.push_back(reader.fields().size());
        }
    }
    if (isCut && counts.size() > 1) {
        counts.pop_back();
    }
    return counts;
}

/// How many fields the first record gets, and how many records get as many.
Split splitBy(std::string_view beginning, bool isWhole, const Dialect &dialect)
{
    const std::vector<size_t> counts = fieldCounts(beginning, isWhole, dialect);
    return counts.empty() ? Split()
                          : Split{counts.front(), counts.size(),
                                  static_cast<size_t>(std::ranges::count(counts, counts.front()))};
}

/// Whether `one` is more regular, or as regular with more fields.
bool isBetter(const Split &one, const Split &other)
{
    const double difference = one.irregularity() - other.irregularity();
    return difference < 0 || (difference == 0 && one.fields > other.fields);
}

} // namespace

/// Each candidate splits the beginning; the most regular result wins.
char findSeparator(std::string_view beginning, bool isWhole, Dialect dialect)
{
    char best = kCandidates[0];
    char unused = '\0'; // does not split any record
    Split bestSplit;
    for (const char candidate : kCandidates) {
        dialect.separator = candidate;
        const Split split = splitBy(beginning, isWhole, dialect);
        const bool splitsNone = split.fields == 1 && split.regular == split.records;
        unused = unused == '\0' && splitsNone ? candidate : unused;
        if (split.fields > 1 && (bestSplit.fields == 0 || isBetter(split, bestSplit))) {
            best = candidate;
            bestSplit = split;
        }
    }
    return bestSplit.fields == 0 && unused != '\0' ? unused : best;
}

} // namespace corvanta::csv
