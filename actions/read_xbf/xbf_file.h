// One open table of ReadXBF, with its memo file: its columns and rows.
#pragma once
#include "actions/read_xbf/read_xbf_params.h"
#include "actions/shared/file_series.h"
#include "codecs/dbf/table_reader.h"
#include "io/input/run_input.h"

#include <memory>

namespace corvanta {

/// Threads: see SeriesFile.
class XbfFile final : public SeriesFile
{
public:
    /// Open the table `name` and its memo file. `action` and `decoder` must outlive the file.
    static FileSeries::Opened open(ActionBase &action, const QString &name,
                                   const dbf::TextDecoder &decoder, const ReadXbfParams &params);

    TableSchema columns() const override;
    bool next(OneRow &row, Found *found) override;
    bool finish() override;
    float fractionDone() const override;

private:
    XbfFile(ActionBase &action, const QString &name);
    std::unique_ptr<RunInput> openInput(const QString &name) const;
    void openMemo(const ReadXbfParams &params);
    bool putCells(OneRow &row);
    void warnFindings();
    bool fail(const Fault<dbf::Error> &fault);
    bool failOnInput(const RunInput &input, const QString &name, const QString &otherwise);

    ActionBase &m_action;
    const QString m_name;
    QString m_memoName;
    // Members are destroyed in reverse order: each uses those above it.
    std::unique_ptr<RunInput> m_input;
    std::unique_ptr<RunInput> m_memoInput;
    std::unique_ptr<dbf::MemoFile> m_memo;
    std::unique_ptr<dbf::TableReader> m_reader;
};

} // namespace corvanta
