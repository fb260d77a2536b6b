#include "actions/read_stat/stat_notes.h"

#include "actions/read_stat/stat_options.h"
#include "base/number.h"
#include "codecs/encoding/text_decoder.h"
#include "codecs/stat/data_set_reader.h"
#include "codecs/stat/header_check.h"
#include "codecs/stat/label_reader.h"
#include "io/input/whole_input.h"

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

/// The labels of the set `name`, in the order of the file. SAS names sets of which no catalogue is
/// given, and its own formats.
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

/// A look at a file reports nothing: labels that cannot be read are none.
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
    return params.catalogFile.isEmpty()
               ? orNone(stat::readLabelSets(source, format, params.encoding))
               : setsOfCatalogue(action, params);
}

} // namespace

QVector<ColumnNotes> statNotes(const ActionBase &action, const QString &name,
                               const ReadStatParams &params)
{
    LookedAt file(action, name);
    const stat::Format format = statFormatOf(params, file.input->file);
    const auto source = file.open();
    if (!source || !stat::checkHeader(*source, format)) {
        return {};
    }
    const auto dictionary = stat::readDictionary(*source, statOptionsOf(params, format));
    const auto decoder = encoding::TextDecoder::open(dictionary ? dictionary->encoding : QString());
    if (!dictionary || !decoder) {
        return {};
    }
    const stat::LabelSets sets = readSets(action, *source, format, params);
    QVector<ColumnNotes> notes;
    for (const stat::Variable &variable : dictionary->variables) {
        notes << ColumnNotes{variable.label, variable.format,
                             labelsOf(sets, variable.labelSet, *decoder)};
    }
    return notes;
}

} // namespace corvanta
