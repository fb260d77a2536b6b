// One open table of ReadXBF, with its memo file: its columns and rows.
#pragma once
#include "actions/read_xbf/declared_encoding.h"
#include "actions/read_xbf/memo_name.h"
#include "actions/read_xbf/read_xbf_params.h"
#include "actions/shared/file_series.h"
#include "codecs/dbf/table_reader.h"
#include "io/input/run_input.h"

#include <memory>

namespace corvanta {

/// Words the messages about the table's content. Threads: see SeriesFile.
class XbfFile final : public SeriesFile
{
public:
    /// Open the table `name` and its memo file. `action` and `decoder` must outlive the file.
    static FileSeries::Opened open(ActionBase &action, const QString &name,
                                   const encoding::TextDecoder &decoder,
                                   const ReadXbfParams &params);

    /// Open a table without its memo file. `source` and `decoder` must outlive the reader.
    static Result<std::unique_ptr<dbf::TableReader>, dbf::Error>
    openTable(ByteSource &source, const encoding::TextDecoder &decoder,
              const ReadXbfParams &params);

    /// The fields of supported types, named as in the table.
    TableSchema columns() const override;
    /// A deleted record gives Found::Nothing.
    bool next(OneRow &row, Found *found) override;
    /// Warns about records that the header does not count, and verifies the checksum of a packed
    /// file.
    bool finish() override;
    /// Warns about values that could not be read.
    void beforeClose() override { warnValues(); }
    /// Of the bytes of the (packed) file.
    float fractionDone() const override;

private:
    XbfFile(ActionBase &action, const QString &name);
    // Opening.
    std::unique_ptr<RunInput> openInput(const QString &name) const;
    void useDeclaredEncoding(const ReadXbfParams &params);
    void openMemo(const ReadXbfParams &params);
    void useMemo(const MemoName &name, std::unique_ptr<RunInput> input,
                 const ReadXbfParams &params);

    // Rows and messages. Functions that return a bool return false when the run has failed or
    // ended.
    bool putCells(OneRow &row);
    bool isNumberOfText(size_t column) const;
    bool putNumber(size_t column, RowBuffer &buffer, OneRow &row);
    bool failOnNumber(size_t column, QByteArrayView text);
    void warnColumns();
    void warnCounts();
    void warnValues();
    bool fail(const Fault<dbf::Error> &fault);
    bool failOnInput(const RunInput &input, const QString &name, const QString &otherwise);

    ActionBase &m_action;
    const QString m_name;
    /// Empty while no memo file is open.
    QString m_memoName;
    /// Texts are wanted, and nothing has been said about a missing memo file.
    bool m_reportsMissingMemos = false;
    std::string m_letters; // of the types of the columns; empty: those of the cells
    // Members are destroyed in reverse order: each uses those above it.
    std::unique_ptr<RunInput> m_input;
    std::unique_ptr<RunInput> m_memoInput;
    std::optional<encoding::TextDecoder> m_decoder; // of the encoding that the table names
    std::unique_ptr<dbf::MemoFile> m_memo;          // null: memo cells are missing
    std::unique_ptr<dbf::TableReader> m_reader;
};

} // namespace corvanta
