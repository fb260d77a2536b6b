#include "actions/shared/level_writer.h"

#include "base/counted.h"
#include "base/nearest_name.h"
#include "base/occurrences.h"

#include <QCoreApplication>

#include <map>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A key or tag, and the name of the column whose values follow it.
using ColumnKeys = std::vector<std::pair<std::u16string, QString>>;

void addKeys(const compose::ComposeOperation &item, const OneRow &columns, ColumnKeys *keys)
{
    for (const compose::ComposeOperation::Column &column : item.columns) {
        if (column.before.size() > 0) {
            keys->emplace_back(column.before.view(), columns.colName(column.input));
        }
    }
}

/// Count the columns of an item whose key an earlier column has too.
void addEqualKeys(const compose::ComposeOperation &item, const OneRow &columns, Occurrences *equal)
{
    std::map<std::u16string_view, int> inputs;
    for (const compose::ComposeOperation::Column &column : item.columns) {
        if (column.before.size() == 0) {
            continue; // an array
        }
        const auto [first, isNew] = inputs.emplace(column.before.view(), column.input);
        if (!isNew) {
            equal->add([&, &earlier = first->second] {
                return u"'%1' and '%2'"_s.arg(columns.colName(earlier),
                                              columns.colName(column.input));
            });
        }
    }
}

/// Collect the columns of an item that are written under another name, by their input column.
void addNewNames(const compose::ComposeOperation &item, std::map<int, QString> *newNames)
{
    for (const compose::ComposeOperation::Column &column : item.columns) {
        if (!column.newName.isEmpty()) {
            newNames->emplace(column.input, column.newName);
        }
    }
}

} // namespace

/// Found before a run, which would otherwise fail after its readers have started.
QVector<ParameterProblem> LevelWriter::problems() const
{
    FloatFormat format;
    const QString &text = rowParams().floatToString;
    if (format.set(text)) {
        return {};
    }
    return {
        {QString::fromLatin1(shared::kFloatToString),
         QCoreApplication::translate("Problems", "'%1' is not a format of a floating-point number")
             .arg(text)}};
}

/// The message for a problem with the table or the parameters, which is not one of the file.
QString LevelWriter::messageAbout(const QString &problem) const
{
    const LevelWriterTexts differences = texts();
    return u"%1ERROR writing to %2 file '%3': %4"_s.arg(differences.lineStart, differences.format,
                                                        fileName(), problem);
}

QString LevelWriter::message(WriteProblem problem, const QString &name) const
{
    const LevelWriterTexts differences = texts();
    switch (problem) {
    case WriteProblem::NoTestColumn:
        return messageAbout(u"cannot find column '%1' to test\n"_s.arg(name));
    case WriteProblem::NoColumn:
        return messageAbout(u"cannot find column '%1' to write\n"_s.arg(name));
    case WriteProblem::NoColumns:
        return messageAbout(differences.noColumns);
    case WriteProblem::BadFloatFormat:
        return messageAbout(u"'%1' is not a format of a floating-point number\n"_s.arg(name));
    case WriteProblem::CannotOpen:
        return u"%1ERROR: cannot open %2 file '%3' for write\n"_s.arg(
            differences.lineStart, differences.format, fileName());
    case WriteProblem::CannotWrite:
        return u"%1ERROR: cannot write to %2 file '%3'\n"_s.arg(differences.lineStart,
                                                                differences.format, fileName());
    case WriteProblem::TooLarge:
        break;
    }
    return messageAbout(u"output buffer too small\n"_s);
}

/// The message for a problem of the levels. `name` is the one that LevelProblem describes, `level`
/// the level in which it occurred.
QString LevelWriter::levelMessage(compose::LevelProblem problem, const QString &name,
                                  const QString &level) const
{
    switch (problem) {
    case compose::LevelProblem::NoPartitionColumn:
        return messageAbout(
            u"cannot find partitioning column '%1' in level '%2'\n"_s.arg(name, level));
    case compose::LevelProblem::NoColumn:
        return message(WriteProblem::NoColumn, name);
    case compose::LevelProblem::NoLevel:
        return messageAbout(u"cannot find the level named '%1'\n"_s.arg(name));
    case compose::LevelProblem::CyclicLevel:
        return messageAbout(u"the level '%1' is a sub-level of itself\n"_s.arg(name));
    case compose::LevelProblem::NoDictionary:
        return messageAbout(u"previous Item is not a Dictionary\n"_s);
    case compose::LevelProblem::NoColumnListed:
        break;
    }
    return message(WriteProblem::NoColumns, name);
}

QString LevelWriter::messageFor(const Fault<compose::LevelProblem> &fault,
                                const std::vector<WriteLevel> &declared) const
{
    const WriteLevel &level = declared[static_cast<size_t>(fault.offset)];
    return levelMessage(fault.code, fault.detail, level.name);
}

QString LevelWriter::reasonFor(const Fault<compose::LevelProblem> &fault,
                               const std::vector<WriteLevel> &declared, const OneRow &columns)
{
    if (fault.code == compose::LevelProblem::NoColumn ||
        fault.code == compose::LevelProblem::NoPartitionColumn) {
        return missingColumnReason(fault.detail, columns.schema().names);
    }
    if (fault.code != compose::LevelProblem::NoLevel) {
        return {};
    }
    QStringList levels;
    for (const WriteLevel &level : declared) {
        levels << level.name;
    }
    const QString hint = nearestNameHint(fault.detail, levels);
    return hint.isEmpty() ? QString() : u"there is no such level"_s + hint;
}

compose::ValueRules LevelWriter::commonRules(std::u16string_view nullForm,
                                             std::u16string_view emptyForm) const
{
    // A rule that is not set leaves the value out, with its key.
    const LevelWriterParams &params = rowParams();
    const compose::FixedText null(nullForm);
    compose::ValueRules rules;
    if (params.nullString == MissingText::Null) {
        rules.missingText = null;
    } else if (params.nullString == MissingText::Empty) {
        rules.missingText = compose::FixedText(emptyForm);
    }
    if (params.nullNumber != MissingNumber::LeaveOut) {
        rules.missingNumber = null;
    }
    rules.namesNotFinite = params.nan == NotFinite::Name;
    if (params.nan == NotFinite::Null) {
        rules.notFinite = null;
    }
    rules.floatFormat = m_run->floatFormat;
    return rules;
}

/// Options are fixed for the run; the columns are known only with the first row.
void LevelWriter::start()
{
    RowWriter::start();
    m_run = std::make_unique<RunState>();
    m_run->frame = frame();
    if (!m_run->floatFormat.set(rowParams().floatToString)) {
        failWith(WriteProblem::BadFloatFormat, rowParams().floatToString);
        return;
    }
    // The first drain opens the file, so that a table without text creates none.
    m_run->block = std::make_unique<compose::TextBlock>(
        m_run->frame.encoding, [this](const void *bytes, qint64 n) {
            return (m_run->target.isOpen() || openFile()) && write(bytes, n);
        });
    if (m_run->frame.replacesUnknown) {
        m_run->block->replaceUnknown();
    }
}

bool LevelWriter::begin(const OneRow &columns)
{
    // The order decides which of several mistakes is reported.
    return findTestColumn(columns) && prepareColumns(columns) && makeComposer(columns);
}

bool LevelWriter::makeComposer(const OneRow &columns)
{
    // The levels that were declared are kept here for the message: a fault names its level by
    // index.
    const std::vector<WriteLevel> declared = declaredLevels();
    auto levels = compileLevels(declared, columns.view());
    if (!levels) {
        return fail(messageFor(levels.fault(), declared),
                    reasonFor(levels.fault(), declared, columns));
    }
    // Of the columns that some item writes, no matter on which level.
    QVector<int> written;
    for (const int column : compose::writtenColumns(*levels)) {
        written.append(column);
    }
    if (!checkNames(columns, written)) {
        return false;
    }
    keepKeys(*levels, columns);
    reportNewNames(*levels, columns);
    m_run->composer =
        std::make_unique<compose::LevelComposer>(*std::move(levels), valueRules(), *m_run->block);
    return true;
}

void LevelWriter::keepKeys(const std::vector<compose::ComposeLevel> &levels, const OneRow &columns)
{
    Occurrences equal;
    for (const compose::ComposeLevel &level : levels) {
        for (const compose::ComposeOperation &item : level.operations) {
            addKeys(item, columns, &m_run->keys);
            addEqualKeys(item, columns, &equal);
        }
    }
    if (equal.any()) {
        warn(
            u"Warning: writing to %1 file '%2': %3 %4 the key of another column of the same item, so that readers may keep only one value; the first pair is %5\n"_s
                .arg(texts().format, fileName(), counted(equal.count(), u"column"_s),
                     hasOrHave(equal.count()), equal.first()));
    }
}

/// Once per column, also if several items write it.
void LevelWriter::reportNewNames(const std::vector<compose::ComposeLevel> &levels,
                                 const OneRow &columns)
{
    std::map<int, QString> newNames;
    for (const compose::ComposeLevel &level : levels) {
        for (const compose::ComposeOperation &item : level.operations) {
            addNewNames(item, &newNames);
        }
    }
    std::vector<ChangedName> changed;
    changed.reserve(newNames.size());
    for (const auto &[input, name] : newNames) {
        changed.push_back({columns.colName(input), name});
    }
    if (!changed.empty()) {
        warn(u"Warning: writing to %1 file '%2': %3\n"_s.arg(texts().format, fileName(),
                                                             textOf(changed)));
    }
}

bool LevelWriter::writeRow(const OneRow &row)
{
    if (!prepareRow(row)) {
        return false;
    }
    m_run->hasRow = true;
    m_run->block->beginRow(rowNumber());
    // Composing reports no failures itself; the block keeps the first one.
    m_run->composer->putRow(row.view());
    notePlaces();
    return m_run->block->failure() == compose::TextBlock::Failure::None || checkBlock();
}

/// The composer writes whole blocks; their faults are seen between two rows.
bool LevelWriter::checkBlock()
{
    switch (m_run->block->failure()) {
    case compose::TextBlock::Failure::None:
        return true;
    case compose::TextBlock::Failure::Drain: // reported by write() or openFile()
        return false;
    case compose::TextBlock::Failure::TooLarge:
        break;
    }
    return failWith(WriteProblem::TooLarge);
}

bool LevelWriter::openFile()
{
    const QString name = targetName();
    createFolder(name);
    const bool replaces = rowParams().fileMode == FileMode::Replace;
    const TargetMode mode = replaces ? TargetMode::Replace : TargetMode::Append;
    TargetFile::Options options = targetOptions(fileName(), mode);
    options.packing = TargetFile::Packing::ByName;
    if (const auto opened = m_run->target.open(name, std::move(options)); !opened) {
        return failOpen(opened.fault());
    }
    m_run->hasFile = true;
    // The head of a file that is appended to is already in it.
    const std::string &head = m_run->frame.head;
    return (!replaces || write(head.data(), static_cast<qint64>(head.size()))) &&
           writeText(expandString(m_run->frame.prefix));
}

/// The target is unchanged: nothing was written to it.
bool LevelWriter::failOpen(const Fault<TargetError> &fault)
{
    switch (fault.code) {
    case TargetError::Stopped: // not a failure, so without a message
        return false;
    case TargetError::Locked:
        return failLocked(fault.detail);
    case TargetError::CannotReplace:
    case TargetError::CannotOpen:
    case TargetError::CannotWrite:
    case TargetError::CannotRename:
        break;
    }
    return failWith(WriteProblem::CannotOpen, {}, reasonOf(m_run->target));
}

/// A file that is extended may have several writers in a graph, one that is replaced only one.
QVector<TargetUse> LevelWriter::targets() const
{
    QVector<TargetUse> uses = RowWriter::targets();
    const bool replaces = rowParams().fileMode == FileMode::Replace;
    for (TargetUse &use : uses) {
        use.access = replaces ? TargetUse::Access::Create : TargetUse::Access::Append;
    }
    return uses;
}

bool LevelWriter::write(const void *bytes, qint64 n)
{
    if (m_run->target.write(bytes, n)) {
        return true;
    }
    // A run that was stopped has nothing to complete, and no message.
    return runIsGood() && failWith(WriteProblem::CannotWrite, {}, reasonOf(m_run->target));
}

bool LevelWriter::writeText(const QString &text)
{
    // Past the block, which holds only the text of elements.
    const std::string bytes = compose::encode(text.toStdU16String(), m_run->frame.encoding);
    return write(bytes.data(), static_cast<qint64>(bytes.size()));
}

bool LevelWriter::flush()
{
    // With alwaysWrite a file without text has its prefix and suffix.
    m_run->block->drainAll();
    return checkBlock() && (m_run->target.isOpen() || !rowParams().alwaysWrite || openFile());
}

/// Ends the open elements first, so that the document is complete.
bool LevelWriter::endFile()
{
    // A composer exists once a table was seen.
    if (m_run->composer) {
        m_run->composer->endElements();
        notePlaces();
    }
    if (!flush()) {
        return false;
    }
    if (!m_run->target.isOpen()) {
        return true;
    }
    // Without rows there are no elements that the last line would end.
    const QString lastLine = m_run->composer ? m_run->frame.lastLine : QString();
    if (!writeText(lastLine + expandString(m_run->frame.suffix))) {
        return false;
    }
    reportReplaced();
    return m_run->target.commit() ||
           failWith(WriteProblem::CannotWrite, {}, reasonOf(m_run->target));
}

/// The column is the one whose key or tag is the last before the character. Values without either
/// have no name in the text.
void LevelWriter::reportReplaced()
{
    const std::u16string_view before = m_run->block->textBeforeReplaced();
    if (m_run->block->replaced().count == 0) {
        return;
    }
    QString name;
    size_t last = 0;
    for (const auto &[key, column] : m_run->keys) {
        const size_t at = before.rfind(key);
        if (at != std::u16string_view::npos && at + key.size() > last) {
            last = at + key.size();
            name = column;
        }
    }
    warn(replacedMessage(m_run->block->replaced(), m_run->target.target(), name));
    m_run->block->resetReplaced();
}

/// Only the first event of a run has a place.
void LevelWriter::notePlace(const compose::CountedValues &values, QString *place)
{
    if (values.count == 0 || !place->isEmpty()) {
        return;
    }
    *place = u"row %1"_s.arg(rowNumber());
    if (values.column >= 0) {
        *place += u", column '%1'"_s.arg(getInputColumns(0)->colName(values.column));
    }
}

void LevelWriter::notePlaces()
{
    const compose::CountedValues &lacking = m_run->composer->lackingValues();
    const compose::CountedValues &lost = m_run->composer->lostNumbers();
    if (lacking.count != 0 || lost.count != 0) [[unlikely]] { // called for every row
        notePlace(lacking, &m_run->lackingPlace);
        notePlace(lost, &m_run->lostNumberPlace);
    }
}

/// The formats have no form for such numbers that all readers know.
void LevelWriter::reportLostNumbers()
{
    const qint64 count = m_run->composer ? m_run->composer->lostNumbers().count : 0;
    if (count > 0) {
        warn(
            u"Warning: writing to %1 file '%2': %3 %4 not finite (nan, inf or -inf) and %5; the first is in %6\n"_s
                .arg(texts().format, fileName(), counted(count, u"number"_s), isOrAre(count),
                     rowParams().nan == NotFinite::Null ? u"written as missing"_s : u"left out"_s,
                     m_run->lostNumberPlace));
    }
}

void LevelWriter::reportLackingValues()
{
    const qint64 lacking = m_run->composer ? m_run->composer->lackingValues().count : 0;
    if (lacking > 0) {
        warn(
            u"Warning: %1 %5 nothing where the text around them in the %2 file '%3' needs a value, first at %4: the file is not valid. Let missing values be written (nullString, nullNumber, nan), or change the text items\n"_s
                .arg(counted(lacking, u"item"_s), texts().format, fileName(), m_run->lackingPlace,
                     lacking == 1 ? u"writes"_s : u"write"_s));
    }
}

void LevelWriter::complete()
{
    const bool done = endFile();
    if (done && !m_run->hasFile) {
        warnNoFile();
    }
    if (done) {
        reportLackingValues();
        reportLostNumbers();
    }
}

/// Users look for the file; the message says which parameter makes one.
void LevelWriter::warnNoFile()
{
    const QString reason = isBeforeFirstRow() ? u"the input has no rows"_s
                           : m_run->hasRow    ? u"nothing of the rows is written"_s
                                              : u"no row passes the test"_s;
    warn(
        u"Warning: the %1 file '%2' is not written: %3 (alwaysWrite='1' writes a file without rows).\n"_s
            .arg(texts().format, fileName(), reason));
}

/// Also after a failure; a temporary file is then removed.
void LevelWriter::release(bool)
{
    m_run.reset();
}

} // namespace corvanta
