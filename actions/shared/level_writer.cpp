#include "actions/shared/level_writer.h"

namespace corvanta {

compose::ValueRules LevelWriter::commonRules(std::u16string_view nullForm,
                                             std::u16string_view emptyForm) const
{
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
}

bool LevelWriter::begin(const OneRow &columns)
{
    return findTestColumn(columns) && prepareColumns(columns) && makeComposer(columns);
}

bool LevelWriter::makeComposer(const OneRow &columns)
{
    const std::vector<WriteLevel> declared = declaredLevels();
    auto levels = compileLevels(declared, columns.view());
    if (!levels) {
        const Fault<compose::LevelProblem> &fault = levels.fault();
        const WriteLevel &level = declared[static_cast<size_t>(fault.offset)];
        return fail(levelMessage(fault.code, fault.detail, level.name));
    }
    const std::vector<int> written = compose::writtenColumns(*levels);
    if (!checkNames(columns, {written.begin(), written.end()})) {
        return false;
    }
    m_run->composer =
        std::make_unique<compose::LevelComposer>(*std::move(levels), valueRules(), *m_run->block);
    return true;
}

bool LevelWriter::writeRow(const OneRow &row)
{
    if (!prepareRow(row)) {
        return false;
    }
    m_run->composer->putRow(row.view());
    return m_run->block->failure() == compose::TextBlock::Failure::None || checkBlock();
}

/// Whether the block took all that was composed so far.
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
    if (!m_run->target.open(name, targetOptions(fileName(), mode))) {
        return failWith(WriteProblem::CannotOpen);
    }
    // The head of a file that is appended to is already in it.
    const std::string &head = m_run->frame.head;
    return (!replaces || write(head.data(), static_cast<qint64>(head.size()))) &&
           writeText(expandString(m_run->frame.prefix));
}

bool LevelWriter::write(const void *bytes, qint64 n)
{
    if (m_run->target.write(bytes, n)) {
        return true;
    }
    // A run that was stopped has nothing to complete, and no message.
    return runIsGood() && failWith(WriteProblem::CannotWrite);
}

bool LevelWriter::writeText(const QString &text)
{
    const std::string bytes = compose::encode(text.toStdU16String(), m_run->frame.encoding);
    return write(bytes.data(), static_cast<qint64>(bytes.size()));
}

bool LevelWriter::flush()
{
    m_run->block->drainAll();
    return checkBlock() && (m_run->target.isOpen() || !rowParams().alwaysWrite || openFile());
}

bool LevelWriter::endFile()
{
    if (m_run->composer) {
        m_run->composer->endElements();
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
    return m_run->target.commit() || failWith(WriteProblem::CannotWrite);
}

void LevelWriter::release(bool)
{
    m_run.reset();
}

} // namespace corvanta
