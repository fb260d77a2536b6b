#include "actions/read_stat/stat_options.h"

#include "codecs/stat/check/header_check.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

struct Ending
{
    QLatin1StringView text;
    stat::Format format;
};

constexpr std::array kEndings{
    Ending{".sas7bdat"_L1, stat::Format::Sas},       Ending{".sav"_L1, stat::Format::SpssSav},
    Ending{".zsav"_L1, stat::Format::SpssSav},       Ending{".por"_L1, stat::Format::SpssPor},
    Ending{".dta"_L1, stat::Format::Stata},          Ending{".xpt"_L1, stat::Format::SasTransport},
    Ending{".xport"_L1, stat::Format::SasTransport}, Ending{".xpt5"_L1, stat::Format::SasTransport},
    Ending{".xpt8"_L1, stat::Format::SasTransport},
};

/// A file with any other ending is read as a SAS data set; the reader then reports what it is not.
stat::Format formatOfEnding(const QString &name)
{
    const auto found = std::ranges::find_if(kEndings, [&](const Ending &ending) {
        return name.endsWith(ending.text, Qt::CaseInsensitive);
    });
    return found == kEndings.end() ? stat::Format::Sas : found->format;
}

/// The name of the data set: of the member of an archive, and without the ending of a compressed
/// file.
QString dataSetName(const InputFile &input)
{
    switch (input.kind()) {
    case input::Kind::Zip:
        return input.memberName();
    case input::Kind::Gzip:
        return input.name().chopped(3);
    case input::Kind::Compress:
        return input.name().chopped(2);
    case input::Kind::Rar:
    case input::Kind::Plain:
        break;
    }
    return input.name();
}

/// A saved graph may have any number; those of no format are as OfEnding.
bool namesFormat(const ReadStatParams &params)
{
    return params.fileFormat >= StatFormat::Sas && params.fileFormat <= StatFormat::SasTransport;
}

} // namespace

stat::Format statFormatOf(const ReadStatParams &params, ByteSource &source, stat::Format named)
{
    return namesFormat(params) ? named : stat::formatOfContent(source).value_or(named);
}

stat::Format statFormatOf(const ReadStatParams &params, const InputFile &input)
{
    switch (params.fileFormat) {
    case StatFormat::Sas:
        return stat::Format::Sas;
    case StatFormat::SpssSav:
        return stat::Format::SpssSav;
    case StatFormat::SpssPor:
        return stat::Format::SpssPor;
    case StatFormat::Stata:
        return stat::Format::Stata;
    case StatFormat::SasTransport:
        return stat::Format::SasTransport;
    case StatFormat::OfEnding:
        break;
    }
    return formatOfEnding(dataSetName(input));
}

stat::ReadOptions statOptionsOf(const ReadStatParams &params, stat::Format format,
                                const shared::RowRange &range)
{
    // Both limits may be 0, for none.
    const qint64 count = range.count > 0 && params.maxRows > 0
                             ? std::min<qint64>(range.count, params.maxRows)
                             : std::max<qint64>(range.count, params.maxRows);
    return {
        .format = format,
        .encoding = params.encoding,
        .namesFromLabels = params.columnNamefromLabel,
        .extractLabels = params.extractLabels,
        .formatDates = params.formatDates,
        .columns = params.columnsToRead,
        .skippedRows = range.skipped,
        .maxRows = count,
    };
}

} // namespace corvanta
