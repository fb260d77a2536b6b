// readXML: reads the levels of XML and HTML files, or of XML texts in the rows of an input pin.
//
// The action makes tokenizers, chooses encodings and words the messages. LevelRun does the run.
#pragma once
#include "actions/read_xml/read_xml_params.h"
#include "actions/shared/input_sample.h"
#include "actions/shared/level_run.h"
#include "codecs/markup/tokens/xml_tokenizer.h"
#include "corvanta/action_base.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

extern const ActionEntry kReadXmlEntry;

/// Threads: the one that runs the action; computeCompletion() from any.
class ActionReadXML final : public ParamAction<ActionReadXML, ReadXmlParams>,
                            private LevelRun::Format
{
public:
    ActionReadXML(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadXmlParams> &paramTable() { return readXmlParamTable(); }
    static int pinsInFor(const ReadXmlParams &params)
    {
        return params.fromInputPin != DocumentSource::File ? 1 : 0;
    }
    float computeCompletion() override { return m_series.fractionDone(); }

private:
    // The run.
    void start() override;
    bool step() override;
    void finish() override;

    // Levels found in the file, for graphs without any and for lists of tables.
    QVector<InputTable> listTables() override;
    bool fill(int table) override;

    // Parameters in the form that the codec takes.
    std::unique_ptr<markup::XMLTokenizer> makeTokenizer(ByteSource &source) const;
    bool prepare();
    LevelRun::Input input() const;
    std::vector<ReadLevel> levels() const;
    markup::ExtractOptions extractOptions() const;
    bool chooseEncoding(markup::XMLTokenizer &tokenizer, const QString &name);
    std::optional<markup::SampledDocument> sampleInput();
    /// Open the beginning of the file and pass its tokenizer to `look`.
    bool sampleWith(const std::function<void(markup::XMLTokenizer &)> &look);
    /// Invalid bytes are dropped silently by the tokenizer: one warning per document.
    void warnDroppedBytes(const QString &name);
    bool isFromPin() const { return m_params.fromInputPin != DocumentSource::File; }

    // Documents and messages of LevelRun.
    markup::MarkupTokenizer *beginDocument(ByteSource &source, const QString &name) override;
    void documentEnds(const QString &name) override { warnDroppedBytes(name); }
    bool documentFails(const markup::MarkupResult &result, const QString &name,
                       const QString &why) override;
    bool reportStructureError(const markup::MarkupResult &result, const QString &name,
                              bool isSkipped);
    bool fileIsMissing(const QString &name) override;
    bool columnIsMissing(const QString &name) override;
    void pathIsMissing(const QString &path, const QString &name) override;
    bool isInsideValue() const override { return false; }

    std::unique_ptr<markup::XMLTokenizer> m_tokenizer; // restarted for each document
    CappedLog m_corrupted;                             // structure errors that are skipped
    std::unique_ptr<LevelRun> m_run;                   // null before the first step()
    FileSeries m_series{*this};                        // its file refers to m_run
};

} // namespace corvanta
