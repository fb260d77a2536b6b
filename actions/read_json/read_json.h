// readers/read_json.h
// readJSON: rows from the levels of JSON files, or of JSON texts that come in rows.
#pragma once
#include "actions/read_json/read_json_params.h"
#include "actions/shared/input_sample.h"
#include "actions/shared/level_run.h"
#include "codecs/markup/json_tokenizer.h"
#include "corvanta/action_base.h"

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

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
    static int pinsInFor(const ReadJsonParams &params)
    {
        return params.readTagsFromInPin ? 2 : params.fromInputPin != 0 ? 1 : 0;
    }
    float computeCompletion() override { return m_progress; }

private:
    void start() override;
    bool step() override;
    void finish() override;
    bool fill(int table) override;
    QVector<InputTable> listTables() override;
    std::optional<markup::SampledDocument> sampled();

    bool prepare();
    bool readTags(std::vector<ReadLevel> *levels);
    qint64 bufferBytes() const;
    bool isFromPin() const { return m_params.fromInputPin != 0; }

    markup::MarkupTokenizer *beginDocument(ByteSource &source, const QString &name) override;
    void documentEnds(const QString &) override {}
    bool documentFails(const markup::MarkupResult &result, const QString &name,
                       const QString &why) override;
    bool fileIsMissing(const QString &name) override;
    void columnIsMissing(const QString &name) override;
    void pathIsMissing(const QString &path, const QString &name) override;
    bool isInsideValue() const override { return m_tokenizer->isInsideValue(); }

    std::unique_ptr<LevelRun> m_run;
    std::unique_ptr<markup::JSONTokenizer> m_tokenizer;
    int m_errors = 0; ///< reported
    std::atomic<float> m_progress = 0;
};

} // namespace corvanta
