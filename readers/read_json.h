// readers/read_json.h
// readJSON: rows from the levels of JSON files, or of JSON texts that come in rows.
#pragma once
#include "codecs/markup/level_extractor.h"
#include "corvanta/action_base.h"
#include "io/input/input_file.h"
#include "readers/pin_text.h"
#include "readers/read_json_params.h"

#include <atomic>
#include <memory>
#include <vector>

namespace corvanta {

class ActionReadJSON final : public ParamAction<ActionReadJSON, ReadJsonParams>
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
    /// Bytes of a file for the tokenizer; tells the progress and ends when the run does.
    class FileBytes;
    /// State of one run; made anew by start().
    struct RunState;

    void start() override;
    bool step() override;
    void finish() override;

    bool prepare();
    bool readTags(std::vector<ReadLevel> *levels);
    bool prepareInput();
    void describeColumns(const OneRow *input);
    void makeTokenizer(ByteSource &source);
    bool openNext();
    bool openNextFile();
    bool openFile(const QString &name);
    bool openNextText();
    void putRow();
    bool documentEnds();
    bool documentFails();
    void warnMissingPaths();
    QString sourceName() const;
    bool isFromPin() const { return m_params.fromInputPin != 0; }

    std::unique_ptr<RunState> m_run;
    std::atomic<float> m_progress = 0;
};

} // namespace corvanta
