// Writes a SAS transport file (.xpt), version 5 or 8, with one table.
//
// Format: SAS technical notes TS-140 (version 5) and "Record Layout of a SAS Version 8 or 9 Data
// Set in SAS Transport Format" (version 8). The dates in the headers are fixed, so that equal rows
// give equal bytes.
#pragma once
#include "base/byte_sink.h"
#include "codecs/sas/row_packer.h"
#include "codecs/sas/table_writer.h"

#include <array>
#include <vector>

namespace corvanta::sas {

enum class TransportVersion : quint8 { V5 = 5, V8 = 8 };

/// Limits of a version, in bytes of the file's encoding.
struct TransportLimits
{
    int name;  ///< of a variable, and of the table
    int label; ///< longer ones than 40 are in a section of their own, in version 8 only
    int text;  ///< of one value
};

constexpr TransportLimits limitsOf(TransportVersion version)
{
    return version == TransportVersion::V5
               ? TransportLimits{8, 40, 200}
               : TransportLimits{kMaxNameBytes, kMaxLabelBytes, kMaxTextBytes};
}

/// The most variables: their number has four digits in a header.
inline constexpr int kMaxTransportVariables = 9999;

/// A format of SAS, such as "DATE9.", "$CHAR20." or "8.2", as the file stores it.
struct DisplayFormat
{
    QByteArray name; ///< at most 8 characters
    quint16 width = 0;
    quint16 decimals = 0;
    /// Nothing if the text has another form.
    static std::optional<DisplayFormat> parse(const QByteArray &text);
};

/// Threads: one at a time per object.
class TransportWriter final : public TableWriter
{
public:
    /// What happened to the values of a variable.
    struct ValueReport
    {
        RowCount rounded;  ///< numbers that lost digits, or became 0
        RowCount tooLarge; ///< numbers that became missing
    };

    /// `sink` must outlive the writer; it is written in order, without seeks. Names, labels and the
    /// name of the table are within the limits of the version. Formats that have another form than
    /// those of DisplayFormat are not written.
    TransportWriter(ByteSink &sink, TransportVersion version, QByteArray tableName,
                    std::vector<Variable> variables);

    /// Errors: CannotWrite, TooManyVariables.
    Result<void, Error> begin(qint64 rows) override;
    /// Errors: CannotWrite.
    Result<void, Error> addRows(std::string_view block) override;
    /// Errors: CannotWrite.
    Result<void, Error> finish() override;

    /// One for each variable. Rows count from 1, in the order of addRows().
    const std::vector<ValueReport> &reports() const { return m_reports; }
    /// The rows of blanks at the end. Many readers take all of them for padding, not only those in
    /// the last record, and few use the number of rows in the header of version 8.
    qint64 blankRowsAtEnd() const { return m_blankRows; }

private:
    // The pieces of the file in their order; see the drawing in transport_writer.cpp.
    void addHeader(const char *name, const QByteArray &numbers);
    /// A text with spaces up to its width.
    void addText(const QByteArray &text, qsizetype width);
    void addLibrary();
    void addMember();
    void addVariables();
    /// A descriptor of 140 bytes. `number` counts from 1; `position` is the offset in a row.
    void addVariable(const Variable &variable, int number, qint64 position);
    /// The section for labels that the descriptors cannot hold; version 8 only.
    void addLongLabels();
    void addObservations(qint64 rows);
    /// Fill the last record with spaces, to a multiple of 80 bytes.
    void padRecord();
    // Take a packed row or number at `at`, and return the place after it.
    const char *addRow(const char *at, char *out);
    const char *addNumber(const char *at, size_t variable, char *out);
    /// Pass the buffer to the sink.
    Result<void, Error> flush();

    ByteSink &m_sink;
    TransportVersion m_version;
    QByteArray m_tableName;
    std::vector<Variable> m_variables;
    std::vector<ValueReport> m_reports;
    size_t m_rowBytes = 0;
    qint64 m_rows = 0;
    qint64 m_blankRows = 0; // at the end so far
    std::vector<char> m_buffer;
    qint64 m_written = 0; // bytes before m_buffer
};

} // namespace corvanta::sas
