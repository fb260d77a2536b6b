// Writes a SAS data set (.sas7bdat) through the ReadStat library.
//
// The library defines the layout. This class avoids its known problems where a call can; the others
// are in docs/formats/sas.md. Texts are stored in UTF-8 and padded with zero bytes, numbers are
// doubles. The date in the header is fixed, so that equal rows give equal bytes.
#pragma once
#include "base/byte_sink.h"
#include "codecs/sas/table_writer.h"

#include <memory>
#include <vector>

struct readstat_writer_s;

namespace corvanta::sas {

/// The most variables of a data set that readers accept.
inline constexpr int kMaxDataSetVariables = 4095;

/// Threads: one at a time per object.
class DataSetWriter final : public TableWriter
{
public:
    /// `sink` must outlive the writer; it is written in order, without seeks. Names are not empty,
    /// and not longer than kMaxNameBytes; any other character than a zero may be in a name.
    DataSetWriter(ByteSink &sink, std::vector<Variable> variables);
    ~DataSetWriter() override;

    /// Errors: CannotWrite, Library, TooManyVariables, TooManyRows, NamesTooLong.
    Result<void, Error> begin(qint64 rows) override;
    /// Errors: CannotWrite, Library.
    Result<void, Error> addRows(std::string_view block) override;
    /// Errors: CannotWrite, Library.
    Result<void, Error> finish() override;

private:
    struct Free
    {
        void operator()(readstat_writer_s *writer) const noexcept;
    };

    Result<void, Error> check(qint64 rows) const;
    void tryMemory() const;
    void addVariables();
    int addRow(const char **at);
    Result<void, Error> resultOf(int code) const;
    static long long write(const void *bytes, size_t n, void *self) noexcept;
    bool collect(const char *bytes, size_t n);
    bool flush();

    ByteSink &m_sink;
    std::vector<Variable> m_variables;
    /// Made by begin(); freed also when the end was not written, after a stop for example.
    std::unique_ptr<readstat_writer_s, Free> m_writer;
    std::vector<char> m_buffer; // bytes for the sink
    size_t m_used = 0;
    bool m_sinkFailed = false; // the library does not report all failed writes
};

} // namespace corvanta::sas
