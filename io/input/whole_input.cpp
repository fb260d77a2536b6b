#include "io/input/whole_input.h"

#include "base/limits.h"
#include "corvanta/failure_reason.h"

#include <QByteArray>

#include <algorithm>
#include <vector>

namespace corvanta {

namespace {

/// A source that owns its bytes. MemorySource only refers to them.
class OwnedBytes final : public ByteSource
{
public:
    explicit OwnedBytes(QByteArray bytes)
        : m_bytes(std::move(bytes))
        , m_source(m_bytes)
    {
    }
    qint64 read(void *buffer, qint64 n) override { return m_source.read(buffer, n); }
    qint64 size() override { return m_source.size(); }
    bool seek(qint64 offset) override { return m_source.seek(offset); }

private:
    const QByteArray m_bytes;
    MemorySource m_source;
};

/// Grows with the data: the sizes that compressed files state are not trusted.
Result<QByteArray, WholeInputError> readAll(RunInput &source)
{
    constexpr qsizetype kPieceBytes = 1 << 20;
    QByteArray bytes;
    while (bytes.size() <= limits::kMemberBytes) {
        const qsizetype before = bytes.size();
        bytes.resize(before + kPieceBytes);
        const qint64 got = source.read(bytes.data() + before, kPieceBytes);
        if (got < 0) {
            return Fault{WholeInputError::ReadFailed, source.file.reason()};
        }
        bytes.resize(before + got);
        // Compressed inputs have verified their checksum when they report the end.
        if (got == 0) {
            return bytes;
        }
    }
    return Fault{WholeInputError::TooLarge,
                 QStringLiteral("its content is larger than %1 MiB, and it can only be read whole")
                     .arg(limits::kMemberBytes >> 20)};
}

} // namespace

Result<std::unique_ptr<ByteSource>, WholeInputError> randomAccess(std::unique_ptr<RunInput> input)
{
    // A plain file is not copied: it may be larger than the memory.
    if (input->file.isRandomAccess()) {
        return std::unique_ptr<ByteSource>(std::move(input));
    }
    auto bytes = readAll(*input);
    if (!bytes) {
        return bytes.fault();
    }
    return std::unique_ptr<ByteSource>(std::make_unique<OwnedBytes>(*std::move(bytes)));
}

QString readFailure(const ByteSource &source)
{
    // Bytes in memory cannot fail.
    const auto *const input = dynamic_cast<const RunInput *>(&source);
    return input != nullptr ? failureReason(input->file.name(), FileUse::Read, input->file.error())
                            : QString();
}

bool readToEnd(ByteSource &source)
{
    // Returns after the end or the first failure, which includes the end of the run.
    constexpr qint64 kScratchBytes = qint64(64) * 1024;
    std::vector<char> scratch(kScratchBytes);
    qint64 got = 1;
    while (got > 0) {
        got = source.read(scratch.data(), kScratchBytes);
    }
    return got == 0;
}

} // namespace corvanta
