// One open data set of readStat: its columns, and its rows from the parser's thread.
#pragma once
#include "actions/read_stat/read_stat_params.h"
#include "actions/shared/file_series.h"
#include "codecs/stat/data_set_reader.h"
#include "codecs/stat/row_ring.h"
#include "codecs/stat/transport_member.h"

#include <future>
#include <memory>
#include <optional>
#include <thread>

namespace corvanta {

/// The thread parses the file and puts rows into the ring; next() takes them. The thread does not
/// log: what it finds is reported when the rows are read.
/// Threads: see SeriesFile; stop() ends the waits of both threads.
class StatFile final : public SeriesFile
{
public:
    /// Open `name`, start the parser, and wait until it knows the columns. `action` must outlive
    /// the file.
    static FileSeries::Opened open(ActionBase &action, const QString &name,
                                   const ReadStatParams &params, const shared::RowRange &range);
    ~StatFile() override;

    /// One per selected variable.
    TableSchema columns() const override;
    bool next(OneRow &row, Found *found) override;
    /// Warns about values that were replaced.
    void beforeClose() override;
    float fractionDone() const override;
    void stop() override { m_ring.stop(); }

private:
    StatFile(ActionBase &action, const QString &name, std::unique_ptr<ByteSource> source,
             stat::ReadOptions options, int bufferMiB);

    // Functions that return a bool return false when the run has failed or ended.
    /// Compare the content with the format that the name or the parameters say, `named`.
    bool checkContent(stat::Format named);
    /// Check the parts before the rows.
    bool checkHeader();
    /// Read the value labels: of the file itself, or of a catalogue of SAS; empty: none is named.
    bool readLabels(const QString &catalogue);
    bool readOwnLabels();
    bool readCatalogue(const QString &name);
    /// Start the thread and wait until the columns are known.
    bool startParser();
    /// The function of the thread.
    void parse() noexcept;
    /// Stop and join the thread, if there is one.
    void endParser();
    /// Copy a row of the ring, whose cells are valid only until the next one.
    void copyRow(const uchar *const *cells, OneRow &row);
    // After the last row: report the outcome of the parser.
    bool finishRows(Found *found);
    /// Fail if a transport file has further data sets; they have columns of their own.
    bool checkEndOfTransport();
    void logRowCount(qint64 rows) const;
    /// What the library has printed; at the level of diagnostics, once per file.
    void logLibraryMessages();
    void warnDeletedRows() const;
    /// Warn about variables with the name of an earlier one.
    void warnSameNames() const;
    /// Word a fault of the parser. Returns false.
    bool fail(const Fault<stat::Error> &fault);

    ActionBase &m_action;
    const QString m_name;
    const stat::ReadOptions m_options;
    const int m_bufferMiB;
    stat::LabelSets m_labels;  // until the reader has them
    bool m_isReported = false; // the messages of the library
    // Members are destroyed in reverse order: each uses those above it.
    const std::unique_ptr<ByteSource> m_source;
    stat::TransportLayout m_transport;               // of a transport file
    std::unique_ptr<stat::TransportMember> m_member; // reads m_source; null for other files
    stat::RowRing m_ring;
    std::unique_ptr<stat::DataSetReader> m_reader; // null before startParser()
    // Written by the thread: m_areColumnsKnown until it keeps the promise, m_outcome until it has
    // finished the ring.
    bool m_areColumnsKnown = false;
    std::promise<void> m_columnsPromise;
    Result<void, stat::Error> m_outcome;
    std::thread m_thread;
};

} // namespace corvanta
