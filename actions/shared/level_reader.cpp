#include "actions/shared/level_reader.h"

#include "actions/shared/input_sample.h"

#include <tuple>

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

void LevelReader::beginRun(const LevelRun::Input &source, const std::vector<ReadLevel> &levels,
                           const markup::ExtractOptions &options)
{
    m_run = std::make_unique<LevelRun>(*this, m_series, static_cast<LevelRun::Format &>(*this),
                                       source, levels, options);
}

void LevelReader::expectUtf8(markup::MarkupTokenizer &tokenizer)
{
    // No fault is lost: the tokenizer keeps it for the first token.
    std::ignore =
        tokenizer.setEncoding(markup::CharMode::Utf8, QByteArray(), markup::InvalidBytes::Fail);
}

// ---- Levels found in the file.

/// Levels that the graph has are never replaced, and texts of a pin do not exist before a run.
bool LevelReader::fill(int table)
{
    if (hasItems(readerParams().levels) || isFromPin()) {
        return true;
    }
    const auto document = sampleInput();
    const markup::SampledTable *const chosen = document ? chooseTable(*document, table) : nullptr;
    if (chosen != nullptr) {
        useTable(*chosen);
    }
    return chosen != nullptr;
}

QVector<InputTable> LevelReader::listTables()
{
    const auto document = isFromPin() ? std::nullopt : sampleInput();
    return document ? listedTables(*document, readerParams().levels) : QVector<InputTable>();
}

// ---- Messages.

/// Returns true to continue with the next file.
bool LevelReader::fileIsMissing(const QString &name)
{
    if (readerParams().abortIfMissing) {
        return fail(message(ReadProblem::NoFile, name));
    }
    warn(message(ReadProblem::SkippedFile, name));
    return true;
}

bool LevelReader::columnIsMissing(const QString &name)
{
    return fail(message(ReadProblem::NoColumn, name));
}

void LevelReader::pathIsMissing(const QString &path, const QString &name)
{
    warn(u"Warning: can't find path '"_s + path + u"' inside file '"_s + name + u"'\n"_s);
}

} // namespace corvanta
