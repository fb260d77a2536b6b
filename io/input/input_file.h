// io/input/input_file.h
// The readers' byte stream: plain, gzip, Unix-compress, zip-member and RAR inputs look alike.
//
// A reader gives a name and reads; the name alone says what kind of input it is. Threads: one at a
// time, but getProgress() from any.
#pragma once
#include "base/byte_source.h"
#include "io/input/input_name.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

class GlobalParameters;
struct RunControl;

namespace corvanta {

namespace input {
class InputSource;
}

class InputFile final : public ByteSource
{
public:
    /// Open `name` (already expanded) at once; see isOpen(). `shared` goes to the host's reader of
    /// plain files. What hinders a gzip, .Z or RAR file from opening is logged; the rest is silent.
    InputFile(GlobalParameters *parameters, const QString &name, bool shared);
    ~InputFile() override;

    bool isOpen();

    /// Read up to `n` bytes: the count, 0 at the end, negative after a failure (see failure()).
    /// Packed data that is cut off, damaged or at odds with its checksum ends in a failure.
    qint64 read(void *buffer, qint64 n) override;

    /// Size in bytes of the unpacked data where an archive tells it, else of the file; negative
    /// when there is no such file.
    double getSize();

    /// Bytes that read() will deliver in all, or -1 when not known.
    qint64 size() override;

    /// Fraction read, 0 to 1; -1 when nothing is open.
    float getProgress() const;

    /// Go to an offset of the unpacked data. Packed kinds start again and read up to it.
    bool seek(qint64 offset) override;

    void close();

    input::Kind kind() const { return m_kind; }
    /// The path that was opened; empty when opening failed.
    const QString &name() const { return m_name; }
    /// Name of the zip member that is read, as the archive has it; empty for other kinds.
    QString memberName() const;
    /// Bytes delivered so far, or the offset that seek() went to.
    qint64 position() const { return m_position; }
    /// Whether seek() goes anywhere at no cost.
    bool isRandomAccess() const { return m_kind == input::Kind::Plain; }
    /// The message for a failed read, ready for the log; empty while all is well.
    QString failure() const;

private:
    static constexpr double kSizeNotKnown = -2.0;

    GlobalParameters *m_parameters;
    input::Kind m_kind;
    QString m_name;
    std::unique_ptr<input::InputSource> m_source;
    std::atomic<double> m_size = kSizeNotKnown;
    std::atomic<qint64> m_progressPosition = 0;
    qint64 m_position = 0;
};

/// What a reader does when its input cannot be opened: with `retries` left (a negative count never
/// ends, and is silent) log that it tries again, wait for `pause`, and call `open`; true as soon as
/// that answers true. Ends also when the run does.
bool retryOpening(const QString &name, int retries, const RunControl &control,
                  const std::function<bool()> &open,
                  std::chrono::milliseconds pause = std::chrono::seconds(1));

} // namespace corvanta
