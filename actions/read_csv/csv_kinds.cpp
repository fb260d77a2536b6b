// The kinds of the columns of readCSV, before a run.
#include "actions/read_csv/csv_file.h"
#include "actions/read_csv/read_csv.h"
#include "actions/shared/params/scanned_columns.h"
#include "codecs/csv/record_pieces.h"
#include "io/input/input_file.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace corvanta {

namespace {

using DateValue = csv::RecordScan::Value;

/// A sample must be quick, also where the rows end and gigabytes without a line end follow.
csv::RecordReader::Limits limitsFor(ActionParameters::KindExtent extent)
{
    constexpr size_t kSampledRecordBytes = size_t(16) << 20;
    csv::RecordReader::Limits limits;
    if (extent == ActionParameters::KindExtent::Sample) {
        limits.recordBytes = kSampledRecordBytes;
    }
    return limits;
}

/// A date in a format of the parameter becomes what the run makes of it.
DateValue dateValue(const QString &format)
{
    return [dates = std::make_shared<CsvDates>(format),
            text = std::string()](std::string_view field) mutable {
        std::array<char16_t, CsvDates::kUnits> iso{};
        const int n = dates->toIso(field, iso.data());
        text.assign(iso.begin(), iso.begin() + n); // ASCII
        return n > 0 ? std::string_view(text) : field;
    };
}

/// The conversion of each column; empty for columns without a date format.
std::vector<DateValue> dateValues(const CsvForm &form, const QStringList &names)
{
    std::vector<DateValue> values(form.dateFormats.empty() ? 0 : static_cast<size_t>(names.size()));
    for (const CsvDateFormat &entry : form.dateFormats) {
        for (const QString &name : entry.columns) {
            const qsizetype column = names.indexOf(name);
            if (column >= 0) {
                values[static_cast<size_t>(column)] = dateValue(entry.format);
            }
        }
    }
    return values;
}

/// Without the values of dates.
csv::RecordScan::Rules rulesOf(const CsvForm &form)
{
    return {form.decimal, form.nullValues, form.fillsRagged, {}};
}

} // namespace

/// A file that a run cannot read to its end, or that has other columns, counts as far as it is read
/// here: the run reports it.
std::optional<QVector<ColumnKind>> ActionReadCsv::columnKinds(KindExtent extent)
{
    if (!problems().isEmpty() || !m_params.types.isEmpty() || m_params.fileNameFromPin) {
        return QVector<ColumnKind>();
    }
    const CsvForm form = csvFormOf(m_params);
    QStringList names;
    std::vector<values::ColumnScan> scans;
    std::vector<DateValue> dates;
    std::optional<csv::RecordScan> scan;
    for (const QString &name : namesOfPattern(*this, m_params.fileName)) {
        InputFile file(globalParameters(), name, true, InputFile::Report::Nothing);
        if (!file.isOpen()) {
            return std::nullopt; // a part of the rows must not decide
        }
        file.keepPipe();
        csv::TextReader text(file, form.text, limitsFor(extent));
        csv::RecordReader &records = text.records();
        const auto first = records.next();
        if (!first && first.fault().code == csv::Error::Unreadable) {
            return std::nullopt; // as for a file that is not open
        }
        if (!first || !*first) {
            continue;
        }
        if (!scan) {
            names = CsvFile::columnNames(records, form);
            scans.resize(static_cast<size_t>(names.size()));
            dates = dateValues(form, names);
            csv::RecordScan::Rules rules = rulesOf(form);
            rules.values = dates;
            scan.emplace(scans, rules);
        }
        if (!form.hasHeader && !scan->add(records)) {
            continue;
        }
        if (extent == KindExtent::All && csv::RecordPieces::canCut(records.dialect())) {
            const auto makeValues = [&] { return dateValues(form, names); };
            csv::RecordPieces(*scan, records, rulesOf(form), makeValues).run(scans);
        } else {
            scan->addAll(records, rowsToScan(extent));
        }
    }
    return kindsOf(names, scans);
}

/// The reader converts while it reads, which is cheaper than a `cast` action after it.
bool ActionReadCsv::readColumnsAs(const QVector<ColumnKind> &columns)
{
    m_params.types = lettersOf(columns);
    return true;
}

} // namespace corvanta
