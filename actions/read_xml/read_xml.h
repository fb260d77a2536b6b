// readXML: reads the levels of XML and HTML files, or of XML texts in the rows of an input pin.
//
// The action makes tokenizers, chooses encodings and words the messages. LevelReader has what the
// readers of documents share; LevelRun does the run.
#pragma once
#include "actions/read_xml/read_xml_params.h"
#include "actions/shared/level_reader.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

extern const ActionEntry kReadXmlEntry;

/// Threads: the one that runs the action; computeCompletion() from any.
class ActionReadXML final : public ParamAction<ActionReadXML, ReadXmlParams, LevelReader>
{
public:
    ActionReadXML(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadXmlParams> &paramTable() { return readXmlParamTable(); }
    static int pinsInFor(const ReadXmlParams &params)
    {
        return params.fromInputPin != DocumentSource::File ? 1 : 0;
    }
    QVector<ParameterProblem> problems() const override;
    bool setParameterValue(int index, const QString &value) override;

private:
    const LevelReaderParams &readerParams() const override { return m_params; }
    LevelReaderParams &readerParams() override { return m_params; }
    QString formatName() const override { return QStringLiteral("XML"); }

    // The run. Functions that return a bool return false when the run has failed.
    void start() override;
    bool prepare() override;
    void finish() override;

    // Parameters in the form that the codec takes.

    bool readsSoup() const { return m_params.readHTML && m_params.tagSoup; }
    /// With the tokenizer's options, but without an encoding; see chooseEncoding().
    std::unique_ptr<markup::XMLTokenizer> makeTokenizer(ByteSource &source) const;
    /// The levels with their variables expanded; in HTML mode without the "tbody" in paths copied
    /// from a browser.
    std::vector<ReadLevel> levelsToRead() const override;
    markup::ExtractOptions extractOptions() const override;
    std::unique_ptr<markup::MarkupTokenizer> openDocument(ByteSource &source,
                                                          const QString &name) override;
    /// Set the encoding of the document's bytes: from the parameter, the document, or the system.
    /// Call it before the first token. Returns false, after a message, when it is unknown.
    bool chooseEncoding(markup::XMLTokenizer &tokenizer, const QString &name);
    /// Say which encoding is used where the file does not name one.
    void warnAssumedEncoding(const markup::EncodingChoice &choice, const QByteArray &encoding,
                             const QString &name);

    // Levels found in the file.
    void prepareFill() override;
    std::optional<markup::SampledDocument> sampleInput() override;
    void useTable(const markup::SampledTable &table) override;
    /// Open the beginning of the file and pass its tokenizer to `look`. Returns false, after a
    /// message, when the file cannot be read.
    bool sampleWith(const std::function<void(markup::XMLTokenizer &)> &look);

    // Documents of LevelRun.
    markup::MarkupTokenizer *beginDocument(ByteSource &source, const QString &name) override;
    void documentEnds(const QString &name) override;
    bool skipsFaults() const override { return m_params.skipCorruptedFiles; }
    bool documentFails(const markup::MarkupResult &result, const QString &name,
                       const InputFailure &failure) override;
    bool isInsideValue() const override { return false; }
    /// Invalid bytes are dropped silently by the tokenizer: one warning per document.
    void warnDroppedBytes(const QString &name);
    /// Returns false when the error fails the run: unless `isSkipped`.
    bool reportStructureError(const markup::MarkupResult &result, const QString &name,
                              bool isSkipped);

    std::unique_ptr<markup::XMLTokenizer> m_tokenizer; // restarted for each document
    qint64 m_reportedErrors = 0;                       // structure errors that were skipped
    bool m_warnedAssumption = false;                   // in this run
    bool m_warnedContradiction = false;                // in this run
    bool m_choosesSoup = false;      // tagSoup or expandSpans was set, perhaps to off
    bool m_choosesClearTags = false; // readClearTags was set, perhaps to off
};

} // namespace corvanta
