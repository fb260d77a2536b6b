// readJSON: reads the levels of JSON files, or of JSON texts in the rows of an input pin.
//
// The action makes tokenizers and words the messages. LevelRun does the run.
#pragma once
#include "actions/read_json/read_json_params.h"
#include "actions/shared/input_sample.h"
#include "actions/shared/level_run.h"
#include "codecs/markup/tokens/json_tokenizer.h"
#include "corvanta/action_base.h"

#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

extern const ActionEntry kReadJsonEntry;

/// Threads: the one that runs the action; computeCompletion() from any.
class ActionReadJSON final : public ParamAction<ActionReadJSON, ReadJsonParams>,
                             private LevelRun::Format
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
    float computeCompletion() override { return m_series.fractionDone(); }

private:
    // The run.
    void start() override;
    bool step() override;
    void finish() override;

    // Levels found in the file, for graphs without any and for lists of tables.
    bool fill(int table) override;
    QVector<InputTable> listTables() override;
    std::optional<markup::SampledDocument> sampleInput();

    // Before the first document. They return false when the run has failed or ended.
    bool prepare();
    LevelRun::Input input() const;
    bool readTags(std::vector<ReadLevel> *levels);
    /// Bytes of the tokenizer's buffer and of a record's tree, before they grow.
    qint64 bufferBytes() const;
    bool isFromPin() const { return m_params.fromInputPin != DocumentSource::File; }

    // Documents and messages of LevelRun.
    markup::MarkupTokenizer *beginDocument(ByteSource &source, const QString &name) override;
    void documentEnds(const QString &) override {}
    bool documentFails(const markup::MarkupResult &result, const QString &name,
                       const QString &why) override;
    bool fileIsMissing(const QString &name) override;
    bool columnIsMissing(const QString &name) override;
    void pathIsMissing(const QString &path, const QString &name) override;
    bool isInsideValue() const override { return m_tokenizer->isInsideValue(); }

    std::unique_ptr<markup::JSONTokenizer> m_tokenizer; // restarted for each document
    int m_reportedErrors = 0;                           // of this run
    std::unique_ptr<LevelRun> m_run;                    // null before the first step()
    FileSeries m_series{*this};                         // its file refers to m_run
};

} // namespace corvanta
