#include "actions/shared/level_reader.h"

#include "actions/shared/input_sample.h"
#include "actions/shared/params/scanned_columns.h"
#include "actions/shared/tables/reader_file.h"
#include "base/counted.h"
#include "codecs/markup/levels/line_pieces.h"

#include <algorithm>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

void LevelReader::start()
{
    finish();
    m_series.reset();
}

void LevelReader::finish()
{
    // The open file refers to the run: it is closed first.
    m_series.finish();
    m_run.reset();
}

LevelRun::Input LevelReader::source() const
{
    // LevelRun expands the name: a pattern may give several files.
    const LevelReaderParams &params = readerParams();
    LevelRun::Input source;
    source.fileName = params.fileName;
    source.isFromPin = isFromPin();
    source.namesFiles = params.outputFilenames;
    source.retries = params.timeOut;
    return source;
}

QVector<ParameterProblem> LevelReader::problems() const
{
    return typeProblems(readerParams().types, typeLetters());
}

bool LevelReader::readColumnsAs(const QVector<ColumnKind> &columns)
{
    readerParams().types = lettersOf(columns);
    return true;
}

bool LevelReader::beginRun(const LevelRun::Input &source, const std::vector<ReadLevel> &levels,
                           markup::ExtractOptions options)
{
    const markup::LevelExtractor extractor(levels, options); // for the number of its columns
    if (!takeTypeLetters(*this, readerParams().types, extractor.columnCount(), &options.types,
                         typeLetters())) {
        return false;
    }
    m_run = std::make_unique<LevelRun>(*this, m_series, static_cast<LevelRun::Format &>(*this),
                                       source, levels, options);
    return true;
}

void LevelReader::expectUtf8(markup::MarkupTokenizer &tokenizer)
{
    // No fault is lost: the tokenizer keeps it for the first token.
    std::ignore =
        tokenizer.setEncoding(markup::CharMode::Utf8, QByteArray(), markup::InvalidBytes::Fail);
}

/// A buffer that is larger than the document would only cost memory.
qint64 LevelReader::bufferFor(ByteSource &source, qint64 wanted)
{
    constexpr qint64 kSmallest = qint64(1) << 20;
    constexpr qint64 kOfUnknownSize = qint64(64) << 20;
    const qint64 size = source.size();
    return std::min(wanted, size < 0 ? kOfUnknownSize : std::max(size, kSmallest));
}

// ---- Levels found in the file.

/// Levels that the graph has are never replaced, and texts of a pin do not exist before a run.
bool LevelReader::fill(int table)
{
    if (hasItems(readerParams().levels) || isFromPin()) {
        return true;
    }
    prepareFill();
    const auto document = sampleInput();
    const markup::SampledTable *const chosen = document ? chooseTable(*document, table) : nullptr;
    if (chosen != nullptr) {
        useTable(*chosen);
        m_filledTables = listedTables(*document, readerParams().levels);
        m_filledValues = parameterValues();
    }
    return chosen != nullptr;
}

QStringList LevelReader::parameterValues() const
{
    QStringList values;
    const qsizetype count = parameters().size();
    values.reserve(count);
    for (int i = 0; i < count; ++i) {
        values << parameterValue(i);
    }
    return values;
}

QVector<InputTable> LevelReader::listTables()
{
    QVector<InputTable> filled = std::exchange(m_filledTables, {});
    if (!filled.isEmpty() && m_filledValues == parameterValues()) {
        return filled;
    }
    const auto document = isFromPin() ? std::nullopt : sampleInput();
    return document ? listedTables(*document, readerParams().levels) : QVector<InputTable>();
}

QVector<InputTable> LevelReader::listRelated()
{
    QVector<InputTable> tables;
    const auto document = isFromPin() ? std::nullopt : sampleInput();
    for (const markup::RelatedTable &table :
         document ? document->related : decltype(document->related)()) {
        const auto columns = static_cast<qsizetype>(table.levels.back().items.size());
        tables.append(
            {table.path, table.rows, columns, {}, false, table.name, table.parent, table.key.name});
    }
    return tables;
}

/// Sets the parameters as auto-fill does, for the one table that is chosen.
bool LevelReader::fillRelated(int table, const QVector<bool> &areKeys)
{
    const auto document = sampleInput();
    const auto index = static_cast<size_t>(table);
    if (!document || index >= document->related.size()) {
        return false;
    }
    markup::SampledTable joined;
    joined.levels =
        markup::joinedLevels(document->related, index, {areKeys.begin(), areKeys.end()});
    joined.namesAreData = document->related[index].namesAreData;
    useTable(joined);
    return true;
}

std::vector<std::vector<ReadLevel>> LevelReader::sampledLevels()
{
    std::vector<std::vector<ReadLevel>> levels;
    auto document = isFromPin() ? std::nullopt : sampleInput();
    for (markup::SampledTable &table : document ? document->tables : decltype(document->tables)()) {
        levels.push_back(std::move(table.levels));
    }
    return levels;
}

// ---- Kinds of the columns.

std::optional<QVector<ColumnKind>> LevelReader::columnKinds(KindExtent extent)
{
    const std::vector<ReadLevel> levels = levelsToRead();
    if (isFromPin() || !hasItems(levels) || !readerParams().types.isEmpty()) {
        return QVector<ColumnKind>();
    }
    markup::ExtractOptions options = extractOptions();
    options.countsUnread = false;
    markup::LevelExtractor extractor(levels, options);
    std::vector<values::ColumnScan> scans(static_cast<size_t>(extractor.columnCount()));
    extractor.scanValues(scans);
    markup::LinePieces pieces(levels, options, extractor,
                              [this](ByteSource &source) { return openDocument(source, {}); });
    qint64 rows = rowsToScan(extent);
    for (const QString &name : namesOfPattern(*this, readerParams().fileName)) {
        if (rows <= 0) {
            break;
        }
        InputFile file(globalParameters(), name, true, InputFile::Report::Nothing);
        file.keepPipe();
        const auto tokenizer = file.isOpen() ? openDocument(file, name) : nullptr;
        if (!tokenizer) {
            return std::nullopt; // a part of the rows must not decide
        }
        extractor.beginFile();
        const bool isJson = dynamic_cast<markup::JSONTokenizer *>(tokenizer.get()) != nullptr;
        if (isJson && extent == KindExtent::All) {
            pieces.run(file, scans);
        } else {
            extractor.beginDocument(*tokenizer);
            rows = scanRows(extractor, rows);
        }
        if (!file.failure().isEmpty()) {
            return std::nullopt;
        }
    }
    return kindsOf(extractor.columnNames(), scans);
}

// ---- Messages.

/// Returns true to continue with the next file.
bool LevelReader::fileIsMissing(const QString &name)
{
    const bool fails = readerParams().abortIfMissing;
    const QString text = fails ? u"Error: The %1 file '%2' does not exists"_s
                               : u"Warning: The %1 file '%2' does not exists"_s;
    return failOrWarn(*this, fails, text.arg(formatName().toLower(), name));
}

bool LevelReader::columnIsMissing(const QString &name)
{
    return fail(u"ERROR: %1 parsing Error: Cannot find column '%2'\n"_s.arg(formatName(), name));
}

/// Only a warning, because another document may have the path.
void LevelReader::pathIsMissing(const QString &path, const QString &name)
{
    warn(u"Warning: can't find path '"_s + path + u"' inside file '"_s + name + u"'\n"_s);
}

namespace {

QString countOf(const Occurrences &of)
{
    return QString::number(of.count());
}

} // namespace

/// One message per cause.
void LevelReader::reportUnread(const markup::UnreadParts &unread, const QString &name)
{
    reportUnreadText(unread, name);
    reportBareRecords(unread, name);
    if (unread.unreadItems > 0) {
        warn(u"Warning: values of the records of file '%1' are not read because no item names them "
             "(count: %2, first '%3' at %4). With a larger autoFillNRows more records are examined "
             "to find the columns\n"_s.arg(name, QString::number(unread.unreadItems),
                                           unread.firstUnreadPath, unread.firstUnreadPlace));
    }
    noteOtherParts(unread, name);
}

/// Texts that no record has.
void LevelReader::reportUnreadText(const markup::UnreadParts &unread, const QString &name)
{
    if (unread.bytesAfterNul > 0) {
        warn(u"Warning: the data of file '%1' ends at a NUL character (%2); what follows is not "
             "read (count: %3)\n"_s.arg(name, unread.nulPlace,
                                        counted(unread.bytesAfterNul, u"byte"_s)));
    }
    if (unread.strayTexts.any()) {
        warn(u"Warning: text outside of the values of file '%1' is not read (count: %2, first at "
             "%3)\n"_s.arg(name, countOf(unread.strayTexts), unread.strayTexts.first()));
    }
}

/// Records that have no items.
void LevelReader::reportBareRecords(const markup::UnreadParts &unread, const QString &name)
{
    if (unread.bareValues.any()) {
        warn(u"Warning: single values among the records of file '%1' give rows without a value "
             "(count: %2, first at %3)\n"_s.arg(name, countOf(unread.bareValues),
                                                unread.bareValues.first()));
    }
    if (unread.bareArrays.any()) {
        warn(u"Warning: arrays among the records of file '%1' give rows without a value (count: "
             "%2, first at %3)\n"_s.arg(name, countOf(unread.bareArrays),
                                        unread.bareArrays.first()));
    }
}

/// Not a warning: most documents have parts that a user does not want.
void LevelReader::noteOtherParts(const markup::UnreadParts &unread, const QString &name)
{
    if (unread.outside.any()) {
        MainUI::addLog(
            MainUI::Info,
            u"Parts outside of the records of file '%1' are not read (count: %2, first %3)\n"_s.arg(
                name, countOf(unread.outside), unread.outside.first()));
    }
    for (const markup::RepeatedPath &repeated : unread.repeatedPaths) {
        MainUI::addLog(
            MainUI::Info,
            u"Further matches of path '%1' in file '%2' are not read (count: %3, first at %4)\n"_s
                .arg(repeated.path, name, QString::number(repeated.count), repeated.first));
    }
}

} // namespace corvanta
