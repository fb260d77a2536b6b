// The byte stream of the readers, the same for plain files, .gz, .Z, zip members and RAR archives.
//
// The name alone determines the kind of the input. Threads: one thread at a time per object, except
// getProgress(), which may be called from any.
#pragma once
#include "base/byte_source.h"
#include "base/system_error.h"
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
class ReplayedSource;
} // namespace input

class InputFile final : public ByteSource
{
public:
    /// Whether a failure to open is logged. Nothing: it was, or another attempt will do it.
    enum class Report : bool { Nothing, Failure };

    /// Open `name`, which is expanded already; check isOpen(). `shared` has no effect: other
    /// programs may always continue to write the file. Logs why a .gz, .Z or RAR file cannot be
    /// opened, but nothing for other kinds: the reader reports those.
    InputFile(GlobalParameters *parameters, const QString &name, bool shared,
              Report report = Report::Failure);
    ~InputFile() override;

    /// For a sample, before the first read. What is read from a pipe is kept in memory, as much as
    /// the caller reads, and the next InputFile of this name begins with it.
    void keepPipe();

    /// Whether the file was opened. Pipes and devices open, too; they are read once, in order, and
    /// their size is not known.
    bool isOpen() const { return m_source != nullptr; }

    /// Read up to `n` bytes. Returns the number of bytes, 0 at the end, and a negative number after
    /// a failure; see failure(). Packed data fails if it is truncated, damaged, or does not match
    /// its checksum.
    qint64 read(void *buffer, qint64 n) override;

    /// Size in bytes of the unpacked data if the archive has it, otherwise of the file. Negative if
    /// there is no such file, and for pipes and devices.
    double getSize();

    /// Total number of bytes that read() returns, or -1 if unknown.
    qint64 size() override;

    /// Fraction read, from 0 to 1; -1 if no file is open.
    float getProgress() const;

    /// Move to an offset in the unpacked data. Packed kinds start again and read up to the offset.
    bool seek(qint64 offset) override;

    /// Close the file before the destructor does. read() and seek() then fail.
    void close();

    /// Known also when opening failed.
    input::Kind kind() const { return m_kind; }
    /// The path of the open file; empty if opening failed.
    const QString &name() const { return m_name; }
    /// Name of the zip member, as stored in the archive; empty for other kinds.
    QString memberName() const;
    /// Offset in the unpacked data of the next byte that read() returns.
    qint64 position() const { return m_position; }
    /// Whether seek() has no cost: a plain file, not a pipe or a device.
    bool isRandomAccess() const;
    /// Why the system refused a read of a plain file; see InputSource::error(). Threads: any.
    SystemError error() const;
    /// Why the file could not be opened, or why the last read or seek failed, in words; empty
    /// otherwise.
    QString reason() const;
    /// The log message for a failed read. Empty if the last read succeeded.
    QString failure() const;

private:
    static constexpr double kSizeNotKnown = -2.0;

    GlobalParameters *m_parameters;
    input::Kind m_kind;
    QString m_name;
    QString m_openFailure; // see reason()
    std::unique_ptr<input::InputSource> m_source;
    input::ReplayedSource *m_replayed = nullptr; // m_source if it is one
    bool m_keepsPipe = false;
    std::atomic<double> m_size = kSizeNotKnown; // set once, by the constructor or getSize()
    std::atomic<qint64> m_progressPosition = 0; // of the packed bytes for .gz and .Z
    qint64 m_position = 0;
};

/// Try to open an input again: log a warning, wait for `pause`, and call `open`, up to `retries`
/// times. A negative count repeats without limit and only logs once that it waits, and the `reason`
/// of the failure before. Returns true when `open` does, and false after the last attempt or when
/// the run ends.
bool retryOpening(const QString &name, const QString &reason, int retries,
                  const RunControl &control, const std::function<bool()> &open,
                  std::chrono::milliseconds pause = std::chrono::seconds(1));

} // namespace corvanta
