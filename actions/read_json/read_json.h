// readJSON: reads the levels of JSON files, or of JSON texts in the rows of an input pin.
//
// The action makes tokenizers, reads paths from pin 1 and words the messages. LevelReader has what
// the readers of documents share; LevelRun does the run.
#pragma once
#include "actions/read_json/read_json_params.h"
#include "actions/shared/level_reader.h"
#include "codecs/markup/tokens/json_tokenizer.h"

#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

extern const ActionEntry kReadJsonEntry;

/// Threads: the one that runs the action; computeCompletion() from any.
class ActionReadJSON final : public ParamAction<ActionReadJSON, ReadJsonParams, LevelReader>
{
public:
    ActionReadJSON(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadJsonParams> &paramTable() { return readJsonParamTable(); }
    static void adjustDefaults(ReadJsonParams &params, double savedVersion)
    {
        adjustReadJsonDefaults(params, savedVersion);
    }
    /// Pin 0 brings texts, pin 1 the paths to read.
    static int pinsInFor(const ReadJsonParams &params)
    {
        return params.readTagsFromInPin ? 2 : params.fromInputPin != DocumentSource::File ? 1 : 0;
    }

private:
    const LevelReaderParams &readerParams() const override { return m_params; }
    LevelReaderParams &readerParams() override { return m_params; }
    QString formatName() const override { return QStringLiteral("JSON"); }
    QStringView typeLetters() const override { return u"KFUJ"; }

    // The run.
    void start() override;
    void finish() override;

    // Levels found in the file.
    std::optional<markup::SampledDocument> sampleInput() override;
    void useTable(const markup::SampledTable &table) override;

    // Documents without a run.
    markup::ExtractOptions extractOptions() const override;
    std::vector<ReadLevel> levelsToRead() const override
    {
        return expandedLevels(m_params.levels, *this);
    }
    std::unique_ptr<markup::MarkupTokenizer> openDocument(ByteSource &source,
                                                          const QString &) override
    {
        return makeTokenizer(source);
    }
    std::unique_ptr<markup::JSONTokenizer> makeTokenizer(ByteSource &source) const;

    // Before the first document. They return false when the run has failed or ended.
    bool prepare() override;
    /// Replace the items of `levels` with the paths of pin 1, each in the level that its row names
    /// or else in the last one.
    bool readTags(std::vector<ReadLevel> *levels);
    /// Bytes of the tokenizer's buffer and of a record's tree, before they grow.
    qint64 bufferBytes() const;

    // Documents of LevelRun.
    markup::MarkupTokenizer *beginDocument(ByteSource &source, const QString &name) override;
    void documentEnds(const QString &) override {}
    /// Structure errors fail the run or, with ignoreErrors, are warnings.
    bool skipsFaults() const override { return m_params.ignoreErrors; }
    bool documentFails(const markup::MarkupResult &result, const QString &name,
                       const InputFailure &failure) override;
    /// Log where a structure error is: the column of the first character that is not expected, from
    /// 1, in UTF-16 units.
    static void logPlace(const markup::MarkupResult &result, const QString &name);
    bool isInsideValue() const override { return m_tokenizer->isInsideValue(); }

    std::unique_ptr<markup::JSONTokenizer> m_tokenizer; // restarted for each document
    int m_reportedErrors = 0;                           // of this run
};

} // namespace corvanta
