// writers/level_writer.h
// What the JSON and the XML writer have in common: rows in, composed text out, one file at a time.
#pragma once
#include "actions/shared/composed_file.h"
#include "actions/shared/level_compiler.h"
#include "actions/shared/level_composer.h"
#include "actions/shared/level_writer_params.h"
#include "actions/shared/write_problem.h"
#include "codecs/compose/text_block.h"
#include "corvanta/action_base.h"
#include "corvanta/name_collision.h"

#include <QDir>
#include <QFileInfo>

namespace corvanta {

/// How a file looks apart from its elements.
struct FileFrame
{
    compose::Encoding encoding = compose::Encoding::Utf8;
    std::string head; ///< in front of the prefix, encoded
    QString lastLine; ///< between the last element and the suffix
};

/// The rules for values from the parameters that both writers have. `nullForm` stands for null
/// values.
inline ValueRules valueRules(const LevelWriterParams &params, std::u16string_view nullForm,
                             std::u16string_view emptyForm)
{
    const compose::FixedText null(nullForm);
    ValueRules rules;
    if (params.nullString == 0 || params.nullString == 1) {
        rules.missingText = params.nullString == 0 ? null : compose::FixedText(emptyForm);
    }
    if (params.nullNumber != 1) {
        rules.missingNumber = null;
    }
    rules.namesNotFinite = params.nan == 0;
    if (params.nan == 1) {
        rules.notFinite = null;
    }
    return rules;
}

/// Base of the two actions. `P` has their common parameters. The subclass supplies its texts, its
/// levels, and what is around and between the elements. Rows are passed through to output pin 0.
template <class Self, class P> class LevelWriter : public ParamAction<Self, P>
{
protected:
    using ParamAction<Self, P>::ParamAction;

    /// The message for a problem; `name` and `level` as the problem has them.
    virtual QString message(WriteProblem problem, const QString &name,
                            const QString &level) const = 0;
    virtual std::vector<WriteLevel> declaredLevels() const = 0;
    virtual LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                                const OneRow &columns) const = 0;
    virtual ValueRules rules() const = 0;
    virtual FileFrame frame() const = 0;
    void start() override;
    /// Called for the first row, and for every row that is written; false after a failure.
    virtual bool beforeFirstRow(const OneRow &) { return true; }
    virtual bool beforeRow(const OneRow &) { return true; }
    /// The name of the file that is opened next.
    virtual QString targetName() const { return fileName(); }

    /// The expanded file name, also the one in messages.
    const QString &fileName() const { return m_run->file; }
    bool failWith(WriteProblem problem, const QString &name = {}, const QString &level = {})
    {
        return this->fail(message(problem, name, level));
    }
    /// Complete the current file, if one is open or must be there; false after a failure.
    bool endFile();

private:
    /// State of one run; made anew by start().
    struct RunState
    {
        QString file;
        bool isFirst = true;
        bool isComplete = false; // all rows are composed
        RowFilter filter;
        FileFrame frame;
        FloatFormat floatFormat;
        ComposedFile target;
        std::unique_ptr<compose::TextBlock> block;
        std::unique_ptr<LevelComposer> composer;
    };

    bool step() override;
    void finish() override;

    bool begin(const OneRow &row);
    bool makeComposer(const OneRow &row);
    bool openFile();
    bool write(const void *bytes, qint64 n);
    bool write(const std::string &bytes)
    {
        return write(bytes.data(), static_cast<qint64>(bytes.size()));
    }
    bool writeText(const QString &text);
    bool flush();
    bool composed();

    std::unique_ptr<RunState> m_run;
};

template <class Self, class P> void LevelWriter<Self, P>::start()
{
    m_run = std::make_unique<RunState>();
    m_run->file = this->expandOutputFile(this->m_params.fileName, QString());
    m_run->frame = frame();
    if (!m_run->floatFormat.set(this->m_params.floatToString)) {
        failWith(WriteProblem::BadFloatFormat, this->m_params.floatToString);
        return;
    }
    m_run->block = std::make_unique<compose::TextBlock>(
        m_run->frame.encoding, [this](const void *bytes, qint64 n) {
            return (m_run->target.isOpen() || openFile()) && write(bytes, n);
        });
}

template <class Self, class P> bool LevelWriter<Self, P>::step()
{
    while (!this->yieldRequested()) {
        const OneRow *const row = this->getNextRowFromInPin(0);
        if (row == nullptr) {
            if (m_run->isFirst) {
                this->getOutputRowForOutputPin(0)->copySchemaFrom(this->getInputColumns(0));
            }
            m_run->isComplete = this->runIsGood();
            return false;
        }
        this->getOutputRowForOutputPin(0)->copyFrom(row);
        this->setRowReadyForOutput(0);
        if (m_run->isFirst && !begin(*row)) {
            return false;
        }
        if (m_run->filter.isWanted(*row)) {
            if (!beforeRow(*row)) {
                return false;
            }
            m_run->composer->putRow(*row);
            if (!composed()) {
                return false;
            }
        }
    }
    return true;
}

template <class Self, class P> void LevelWriter<Self, P>::finish()
{
    if (m_run && m_run->isComplete && this->runIsGood()) {
        endFile();
    }
    m_run.reset();
}

template <class Self, class P> bool LevelWriter<Self, P>::begin(const OneRow &row)
{
    m_run->isFirst = false;
    if (!m_run->filter.begin(this->m_params, row)) {
        return failWith(WriteProblem::NoTestColumn, this->m_params.testCol);
    }
    return beforeFirstRow(row) && makeComposer(row);
}

template <class Self, class P> bool LevelWriter<Self, P>::makeComposer(const OneRow &row)
{
    const std::vector<WriteLevel> declared = declaredLevels();
    auto levels = compileLevels(declared, row);
    if (!levels) {
        const qint64 level = levels.fault().offset;
        return failWith(levels.fault().code, levels.fault().detail,
                        declared[static_cast<size_t>(level)].name);
    }
    if (doCheckNameCollision(&row, this->m_params.checkNameCollision, this, columnsOf(*levels),
                             m_run->file) != 0) {
        return false;
    }
    ValueRules valueRules = rules();
    valueRules.floatFormat = m_run->floatFormat;
    m_run->composer =
        std::make_unique<LevelComposer>(*std::move(levels), std::move(valueRules), *m_run->block);
    return true;
}

/// Whether all that was composed so far could be taken.
template <class Self, class P> bool LevelWriter<Self, P>::composed()
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

template <class Self, class P> bool LevelWriter<Self, P>::openFile()
{
    const QString name = targetName();
    if (this->m_params.createDir) {
        QDir().mkpath(QFileInfo(name).absolutePath());
    }
    const bool replaces = this->m_params.fileMode == 0;
    const auto mode = replaces ? ComposedFile::Mode::Replace : ComposedFile::Mode::Append;
    if (!m_run->target.open(name, mode, this->getIdx())) {
        return failWith(WriteProblem::CannotOpen);
    }
    return (!replaces || write(m_run->frame.head)) &&
           writeText(this->expandString(this->m_params.prefix));
}

template <class Self, class P> bool LevelWriter<Self, P>::writeText(const QString &text)
{
    return write(compose::encode(text.toStdU16String(), m_run->frame.encoding));
}

template <class Self, class P> bool LevelWriter<Self, P>::write(const void *bytes, qint64 n)
{
    while (!m_run->target.write(bytes, n)) {
        if (!this->runIsGood()) {
            return false; // stopped: there is nothing to complete
        }
        if (!MainUI::displayOutOfDiskSpace(m_run->file, this->getIdx(), true)) {
            return failWith(WriteProblem::CannotWrite);
        }
    }
    return true;
}

template <class Self, class P> bool LevelWriter<Self, P>::flush()
{
    m_run->block->drainAll();
    return composed() && (m_run->target.isOpen() || !this->m_params.alwaysWrite || openFile());
}

template <class Self, class P> bool LevelWriter<Self, P>::endFile()
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
    const QString lastLine = m_run->composer ? m_run->frame.lastLine : QString();
    if (!writeText(lastLine + this->expandString(this->m_params.suffix))) {
        return false;
    }
    return m_run->target.commit() || failWith(WriteProblem::CannotWrite);
}

} // namespace corvanta
