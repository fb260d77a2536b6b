#include "actions/read_stat/read_stat.h"

#include "actions/read_stat/stat_file.h"
#include "actions/read_stat/stat_notes.h"
#include "codecs/encoding/text_decoder.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionReadStat::ActionReadStat(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadStatEntry, saved, parameters)
{
}

/// A run would ignore the first, and report the second when it opens a file.
QVector<ParameterProblem> ActionReadStat::problems() const
{
    QVector<ParameterProblem> found;
    const StatFormat format = m_params.fileFormat;
    if (format < StatFormat::OfEnding || format > StatFormat::SasTransport) {
        found.append(
            {QString::fromLatin1(kFileFormat),
             QCoreApplication::translate(
                 "Problems",
                 "the value '%1' of '%2' is not allowed; allowed: a whole number from -1 to "
                 "4; the action goes by the ending of the file name")
                 .arg(QString::number(static_cast<int>(format)),
                      QString::fromLatin1(kFileFormat))});
    }
    if (!encoding::TextDecoder::open(m_params.encoding)) {
        found.append({QString::fromLatin1(kStatEncoding),
                      QCoreApplication::translate("Problems", "the encoding '%1' is unknown")
                          .arg(m_params.encoding)});
    }
    return found;
}

/// The name of the parameter is not read when the names come from a pin.
QStringList ActionReadStat::inputs() const
{
    QStringList files = ParamAction::inputs();
    if (m_params.fileNameFromPin) {
        files.removeAll(expandFile(m_params.fileName));
    }
    return files;
}

QVector<ColumnNotes> ActionReadStat::columnNotes()
{
    const QStringList files = namedFiles();
    return files.isEmpty() ? QVector<ColumnNotes>() : statNotes(*this, files.first(), m_params);
}

std::optional<QVector<ColumnKind>> ActionReadStat::columnKinds(KindExtent /*extent*/)
{
    const QStringList files = namedFiles();
    if (files.isEmpty()) {
        return QVector<ColumnKind>();
    }
    auto kinds = statColumnKinds(*this, files.first(), m_params);
    if (kinds && files.size() > 1) {
        // Another file may have decimals in a column that the first one has as integers.
        kinds->removeIf([](const ColumnKind &kind) { return kind.kind == ValueKind::Integer; });
    }
    return kinds;
}

Result<RowBlocks, QString> ActionReadStat::rowBlocks()
{
    const auto rows = statRowCount(*this, namedFiles().value(0), m_params);
    return rows ? Result<RowBlocks, QString>(RowBlocks{{*rows}, true}) : rows.fault();
}

// ---- Before the first row.

QStringList ActionReadStat::namedFiles() const
{
    return m_params.fileNameFromPin ? QStringList() : namesOfPattern(*this, m_params.fileName);
}

void ActionReadStat::start()
{
    m_series.reset();
    // Names from the pin are read by the first step(): input rows do not exist before.
    if (!m_params.fileNameFromPin) {
        // A failure is logged and fails the run. step() then finds no open file and ends it.
        prepare();
    }
}

bool ActionReadStat::step()
{
    return (m_series.hasBegun() || prepare()) && m_series.step();
}

/// List the files and open the first one.
bool ActionReadStat::prepare()
{
    const auto range = shared::rowRangeOf(*this, m_params);
    if (!range) {
        return false;
    }
    m_range = *range;
    QStringList files = namedFiles();
    const bool isListed = !m_params.fileNameFromPin || readNamesFromPin(&files);
    return isListed && startSeries(files);
}

bool ActionReadStat::startSeries(const QStringList &files)
{
    FileSeries::Options options;
    options.fileNameColumn = m_params.outputFilenames ? m_params.fileNameColumn : QString();
    m_series.start(*this, files, options);
    return m_series.openNext();
}

/// Reads all rows, also those after a row without a name.
bool ActionReadStat::readNamesFromPin(QStringList *names)
{
    bool isComplete = true;
    while (const OneRow *const row = getNextRowFromInPin(0)) {
        const QString name = row->numberOfColumns() > 0 ? row->text(0) : QString();
        isComplete = isComplete && !name.isEmpty();
        *names << expandFile(name);
    }
    if (!isComplete || names->isEmpty()) {
        return runIsGood() &&
               fail(u"ERROR: Cannot read the name of the stat file on input pin??"_s);
    }
    return true;
}

// ---- Files and messages.

FileSeries::Opened ActionReadStat::openFile(const QString &name)
{
    return StatFile::open(*this, name, m_params, m_range);
}

bool ActionReadStat::reportMissing(const QString &name)
{
    return fail(u"ERROR: cannot open statistical file '%1'\n"_s.arg(name));
}

/// Column indexes in the message count from 1.
bool ActionReadStat::reportMismatch(const ColumnMismatch &mismatch)
{
    switch (mismatch.kind) {
    case ColumnMismatch::Kind::Count:
        return fail(
            u"ERROR: the statistical file '%1' has %2 columns, but the first file has %3\n"_s.arg(
                mismatch.file, mismatch.found, mismatch.first));
    case ColumnMismatch::Kind::Name:
        return fail(
            u"ERROR: the column %2 of the statistical file '%1' is named '%3', but '%4' in the first file\n"_s
                .arg(mismatch.file, QString::number(mismatch.column + 1), mismatch.found,
                     mismatch.first));
    case ColumnMismatch::Kind::Type:
        break;
    }
    return fail(
        u"ERROR: the column '%2' of the statistical file '%1' is of type %3, but of type %4 in the first file\n"_s
            .arg(mismatch.file, mismatch.name, mismatch.found, mismatch.first));
}

} // namespace corvanta
