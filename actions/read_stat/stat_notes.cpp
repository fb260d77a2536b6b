#include "actions/read_stat/stat_notes.h"

#include "actions/read_stat/stat_options.h"
#include "base/number.h"
#include "codecs/encoding/text_decoder.h"
#include "codecs/stat/check/header_check.h"
#include "codecs/stat/data_set_reader.h"
#include "codecs/stat/label_reader.h"
#include "codecs/stat/transport_member.h"
#include "io/input/kept_pipe.h"
#include "io/input/whole_input.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using ValueLabel = ColumnNotes::ValueLabel;

/// An open file that is not part of a run.
struct LookedAt
{
    LookedAt(const ActionBase &action, const QString &name)
        : input(std::make_unique<RunInput>(action.globalParameters(), control, name, false,
                                           InputFile::Report::Nothing))
    {
        control.runStatus = RunControl::Running;
    }
    /// Null for a file that cannot be read, or not again.
    std::unique_ptr<ByteSource> open()
    {
        if (!input->file.isOpen() || input->file.size() < 0) {
            return nullptr;
        }
        auto opened = randomAccess(std::move(input));
        return opened ? *std::move(opened) : nullptr;
    }

    RunControl control;
    std::unique_ptr<RunInput> input;
};

/// Missing values have a letter: "." and the tag.
QString valueText(const stat::LabelSet::Entry &entry, const encoding::TextDecoder &decoder)
{
    if (entry.isText) {
        return decoder.decodeCut(entry.text);
    }
    if (entry.tag != 0) {
        return u'.' + QString(QLatin1Char(entry.tag));
    }
    return shortestText(entry.number);
}

/// The labels of the set `name`, in the order of the file. A SAS file also names its own
/// formats, and sets of catalogues that are not given.
QVector<ValueLabel> labelsOf(const stat::LabelSets &sets, const QString &name,
                             const encoding::TextDecoder &decoder)
{
    QVector<ValueLabel> labels;
    const auto set = sets.find(name);
    if (!name.isEmpty() && set != sets.end()) {
        for (const stat::LabelSet::Entry &entry : set->second.entries) {
            labels << ValueLabel{valueText(entry, decoder), entry.label};
        }
    }
    return labels;
}

/// No labels where they cannot be read: only a run reports that.
stat::LabelSets orNone(Result<stat::LabelSets, stat::Error> labels)
{
    return labels ? *std::move(labels) : stat::LabelSets();
}

/// The value labels of the catalogue.
stat::LabelSets setsOfCatalogue(const ActionBase &action, const ReadStatParams &params)
{
    LookedAt file(action, action.expandFile(params.catalogFile));
    const auto catalogue = file.open();
    const bool isGood = catalogue && stat::checkCatalogue(*catalogue);
    return isGood ? orNone(stat::readCatalogue(*catalogue, params.encoding)) : stat::LabelSets();
}

/// The value labels of the data set, or of the catalogue.
stat::LabelSets readSets(const ActionBase &action, ByteSource &source, stat::Format format,
                         const ReadStatParams &params)
{
    if (!stat::isOfSas(format)) {
        return orNone(stat::readLabelSets(source, format, params.encoding));
    }
    return params.catalogFile.isEmpty() ? stat::LabelSets() : setsOfCatalogue(action, params);
}

/// A data set whose header is good, and its dictionary.
struct OpenDataSet
{
    stat::Format format;
    std::unique_ptr<LookedAt> file; // the source uses its control
    std::unique_ptr<ByteSource> source;
    stat::Dictionary dictionary;
};

/// Nothing fails and nothing is reported: the run that follows does both.
std::optional<OpenDataSet> openDataSet(const ActionBase &action, const QString &name,
                                       const ReadStatParams &params)
{
    // A pipe can be read only once: opening it here would take the bytes that the run reads.
    if (input::isPipe(name)) {
        return std::nullopt;
    }
    auto file = std::make_unique<LookedAt>(action, name);
    const stat::Format named = statFormatOf(params, file->input->file);
    auto source = file->open();
    if (!source) {
        return std::nullopt;
    }
    const stat::Format format = statFormatOf(params, *source, named);
    if (!stat::checkHeader(*source, format)) {
        return std::nullopt;
    }
    auto dictionary = stat::readDictionary(*source, statOptionsOf(params, format));
    if (!dictionary) {
        return std::nullopt;
    }
    return OpenDataSet{format, std::move(file), std::move(source), *std::move(dictionary)};
}

/// The kind of a variable with this kind of date, which is not None.
ValueKind valueKindOf(stat::DateKind date)
{
    switch (date) {
    case stat::DateKind::SasDateTime:
    case stat::DateKind::SpssDateTime:
    case stat::DateKind::StataClock:
    case stat::DateKind::StataLeapClock:
        return ValueKind::DateTime;
    case stat::DateKind::Time:
        return ValueKind::Time;
    default:
        return ValueKind::Date;
    }
}

} // namespace

QVector<ColumnNotes> statNotes(const ActionBase &action, const QString &name,
                               const ReadStatParams &params)
{
    const auto file = openDataSet(action, name, params);
    const auto decoder = encoding::TextDecoder::open(file ? file->dictionary.encoding : QString());
    if (!file || !decoder) {
        return {};
    }
    const stat::LabelSets sets = readSets(action, *file->source, file->format, params);
    QVector<ColumnNotes> notes;
    const stat::ReadOptions options = statOptionsOf(params, file->format);
    for (const stat::Variable &variable : file->dictionary.variables) {
        const auto labels = labelsOf(sets, variable.labelSet, *decoder);
        // Where the labels are the values, the format is not that of the column.
        const bool areValues = params.extractLabels && !labels.isEmpty();
        notes << ColumnNotes{options.columnName(variable), variable.label,
                             areValues ? QString() : variable.format,
                             areValues ? QVector<ValueLabel>() : labels};
    }
    return notes;
}

std::optional<QVector<ColumnKind>> statColumnKinds(const ActionBase &action, const QString &name,
                                                   const ReadStatParams &params)
{
    const auto file = openDataSet(action, name, params);
    if (!file) {
        return std::nullopt;
    }
    QVector<ColumnKind> columns;
    const stat::ReadOptions options = statOptionsOf(params, file->format);
    const bool mayHaveLabels = params.extractLabels && !stat::isOfSas(file->format);
    for (const stat::Variable &variable : file->dictionary.variables) {
        const bool hasLabels = mayHaveLabels && !variable.labelSet.isEmpty();
        const bool isDate = params.formatDates && variable.date != stat::DateKind::None;
        if (!hasLabels && isDate) {
            columns << ColumnKind{options.columnName(variable), valueKindOf(variable.date)};
        } else if (!hasLabels && variable.isInteger) {
            columns << ColumnKind{options.columnName(variable), ValueKind::Integer, 'F'};
        }
    }
    return columns;
}

Result<qint64, QString> statRowCount(const ActionBase &action, const QString &name,
                                     const ReadStatParams &params)
{
    const auto file = openDataSet(action, name, params);
    if (!file) {
        return Fault{u"it cannot be read as a statistical file"_s};
    }
    if (file->dictionary.rows >= 0) {
        return file->dictionary.rows;
    }
    const auto layout =
        file->format == stat::Format::SasTransport
            ? stat::readTransportLayout(*file->source)
            : Result<stat::TransportLayout, stat::Error>(Fault{stat::Error::Damaged});
    if (!layout) {
        return Fault{u"its format does not say how many rows there are"_s};
    }
    return layout->rows >= 0 ? layout->rows
                             : (file->source->size() - layout->rowsAt) / layout->rowBytes;
}

} // namespace corvanta
