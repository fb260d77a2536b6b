// Base of writeJSON and writeXML: composes rows into text by levels and writes it to files.
#pragma once
#include "actions/shared/params/level_writer_params.h"
#include "actions/shared/row_writer.h"
#include "codecs/compose/level_compiler.h"
#include "codecs/compose/text_block.h"

#include <memory>

namespace corvanta {

/// What a file holds around its elements.
struct FileFrame
{
    compose::Encoding encoding = compose::Encoding::Utf8;
    std::string head; ///< before the prefix, encoded; not written to a file that is appended to
    QString prefix;   ///< at the start of the file; expanded before it is written
    QString lastLine; ///< between the last element and the suffix
    QString suffix;   ///< at the end of the file; expanded before it is written
};

/// The action supplies its messages, its levels and the frame of its files. A file is opened when
/// the first text for it is complete, or at the end when `alwaysWrite` is on.
class LevelWriter : public RowWriter
{
protected:
    using RowWriter::RowWriter;

    const LevelWriterParams &rowParams() const override = 0;
    const QString &fileParameter() const override { return rowParams().fileName; }
    /// The message for a problem of the levels; `name` is the one that LevelProblem describes,
    /// `level` the level in which it occurred.
    virtual QString levelMessage(compose::LevelProblem problem, const QString &name,
                                 const QString &level) const = 0;
    virtual std::vector<WriteLevel> declaredLevels() const = 0;
    virtual compose::LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                                         const RowView &columns) const = 0;
    virtual compose::ValueRules valueRules() const = 0;
    virtual FileFrame frame() const = 0;
    /// Called once per run, before the levels are compiled. Returns false after a failure.
    virtual bool prepareColumns(const OneRow &) { return true; }
    /// Called before each selected row. Returns false after a failure.
    virtual bool prepareRow(const OneRow &) { return true; }
    /// The name of the next file.
    virtual QString targetName() const { return fileName(); }

    void start() override;
    bool begin(const OneRow &columns) override;
    bool writeRow(const OneRow &row) override;
    void complete() override { endFile(); }
    void release(bool wasComplete) override;

    /// The rules for values that both actions have parameters for. Null values are written as
    /// `nullForm`, empty texts in place of missing ones as `emptyForm`.
    compose::ValueRules commonRules(std::u16string_view nullForm,
                                    std::u16string_view emptyForm) const;
    /// Complete the current file, if it is open or `alwaysWrite` is on. Returns false after a
    /// failure.
    bool endFile();

private:
    /// State of one run, recreated by start().
    struct RunState
    {
        FileFrame frame;
        FloatFormat floatFormat;
        TargetFile target;
        std::unique_ptr<compose::TextBlock> block;
        std::unique_ptr<compose::LevelComposer> composer;
    };

    bool makeComposer(const OneRow &columns);
    bool openFile();
    bool write(const void *bytes, qint64 n);
    bool writeText(const QString &text);
    bool flush();
    bool checkBlock();

    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
