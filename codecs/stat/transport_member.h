// The first data set of a SAS transport file (.xpt).
//
// A transport file can hold several data sets. The library reads everything after the first header
// as rows, so the bytes that it gets must end with the first data set.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/stat/error.h"

namespace corvanta::stat {

/// Where the rows of the first data set are. Sizes in bytes.
struct TransportLayout
{
    qint64 rowsAt = 0;   ///< offset of the first row
    qint64 rowBytes = 0; ///< at least 1
    qint64 rows = -1;    ///< as the header says; -1: it does not say it, as in version 5
};

/// Read the headers. `source` seeks at no cost and knows its size; its position changes. Errors:
/// Damaged, Unreadable.
Result<TransportLayout, Error> readTransportLayout(ByteSource &source);

/// The bytes of a file up to its second data set. Threads: as the source.
class TransportMember final : public ByteSource
{
public:
    /// `source` must outlive this object, and is not used otherwise as long as this object reads.
    /// `rowsAt` is the first place where another data set can begin. Call seek() first.
    TransportMember(ByteSource &source, qint64 rowsAt)
        : m_source(source)
        , m_rowsAt(rowsAt)
    {
    }
    qint64 read(void *buffer, qint64 n) override;
    /// Of all data sets: where the first one ends is known only when it is read.
    qint64 size() override { return m_source.size(); }
    bool seek(qint64 offset) override;
    /// Whether the bytes read so far end before another data set.
    bool hasMore() const { return m_end >= 0; }

private:
    qint64 bytesBeforeNext(QByteArrayView bytes);

    ByteSource &m_source;
    const qint64 m_rowsAt;
    qint64 m_position = 0;
    qint64 m_end = -1; // offset of the next data set; -1: not found
};

} // namespace corvanta::stat
