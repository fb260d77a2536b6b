#include "io/input/input_file.h"

#include "base/text/binary_kind.h"
#include "corvanta/action_item.h"
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "corvanta/main_ui.h"
#include "io/input/archive_sources.h"
#include "io/input/kept_pipe.h"

#include <algorithm>
#include <array>
#include <thread>

namespace corvanta {

using input::InputName;
using input::InputSource;
using input::Kind;
using input::OpenError;

namespace {

/// A plain file, read through the host's file class.
class PlainSource final : public InputSource
{
public:
    PlainSource(QString name, std::unique_ptr<MyReadFile> file)
        : m_name(std::move(name))
        , m_file(std::move(file))
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        const qint64 got = m_file->read(buffer, n);
        return got < 0 ? fail(failureReason(m_name, FileUse::Read, m_file->error())) : got;
    }
    qint64 size() override { return m_file->size(); }
    bool seek(qint64 offset) override
    {
        clearFailure();
        return m_file->seek(offset);
    }
    qint64 progressPosition() const override { return m_file->position(); }
    SystemError error() const override { return m_file->error(); }

private:
    const QString m_name;
    std::unique_ptr<MyReadFile> m_file;
};

input::Opened openPlain(const QString &name)
{
    auto file = MyReadFile::open(name);
    if (!file) {
        return Fault{OpenError::CannotOpen, failureReason(name, FileUse::Read, file.fault().code)};
    }
    return std::unique_ptr<InputSource>(std::make_unique<PlainSource>(name, *std::move(file)));
}

/// Whether a file without an ending that says so may be compressed. The reader of gzip data returns
/// all other data of a pipe unchanged. A file that is standard input stays one with random access.
bool mayBePacked(const QString &path)
{
    if (input::isPipe(path)) {
        return true;
    }
    if (path != QLatin1StringView("/dev/stdin")) {
        return false;
    }
    std::array<char, kBinaryKindBytes> bytes{};
    const auto file = MyReadFile::open(path);
    const qint64 size = file ? readFully(**file, bytes.data(), bytes.size()) : 0;
    return size > 0 && binaryKind({bytes.data(), static_cast<size_t>(size)}) == BinaryKind::Gzip;
}

/// Gzip and .Z files are opened by the host, whose own readers need them too.
input::Opened openSource(GlobalParameters *parameters, const InputName &parts)
{
    switch (parts.kind) {
    case Kind::Rar:
        return input::openRar(parts.path);
    case Kind::Gzip:
        return input::openGzipFile(parameters, parts.path);
    case Kind::Zip:
        return input::openZipMember(parts.path, parts.member);
    case Kind::Compress:
        return input::openCompressFile(parameters, parts.path);
    case Kind::Plain:
        break;
    }
    return mayBePacked(parts.path) ? input::openGzipFile(parameters, parts.path)
                                   : openPlain(parts.path);
}

/// Log the failures that only this class knows. Readers report files of the other kinds, with their
/// own texts.
void logOpenFailure(const InputName &parts, const Fault<OpenError> &fault)
{
    const bool logsMissingFiles = parts.kind == Kind::Gzip || parts.kind == Kind::Compress;
    switch (fault.code) {
    case OpenError::CannotOpen:
        if (logsMissingFiles) {
            MainUI::addLog(MainUI::Error,
                           QStringLiteral("Cannot open file '%1' for read.").arg(parts.path));
        }
        break;
    case OpenError::NoUnpacker:
        MainUI::addLog(MainUI::Error, fault.detail);
        break;
    case OpenError::Refused:
        if (parts.kind == Kind::Rar) {
            MainUI::addLog(MainUI::Error,
                           QStringLiteral("ERROR: cannot read the RAR file '%1': %2\n")
                               .arg(parts.path, fault.detail));
        }
        break;
    }
}

} // namespace

InputFile::InputFile(GlobalParameters *parameters, const QString &name, bool, Report report)
    : m_parameters(parameters)
{
    const InputName parts = input::parseInputName(name);
    m_kind = parts.kind;
    // Opening a pipe again would wait for another writer.
    auto kept = input::takePipe(parts.path);
    m_replayed = kept.get();
    auto opened = kept ? input::Opened(std::move(kept)) : openSource(parameters, parts);
    if (!opened) {
        if (report == Report::Failure) {
            logOpenFailure(parts, opened.fault());
        }
        m_openFailure = opened.fault().detail;
        return;
    }
    m_source = *std::move(opened);
    m_name = parts.path;
    // Only archives state the size of the unpacked data. For .gz and .Z, size and progress are
    // those of the compressed file.
    if (m_kind == Kind::Zip || m_kind == Kind::Rar) {
        m_size = static_cast<double>(m_source->size());
    }
}

InputFile::~InputFile()
{
    close();
}

void InputFile::keepPipe()
{
    if (!m_source || !input::isPipe(m_name)) {
        return;
    }
    // A pipe that was kept before is recorded already.
    if (m_replayed == nullptr) {
        auto replayed = std::make_unique<input::ReplayedSource>(std::move(m_source));
        m_replayed = replayed.get();
        m_source = std::move(replayed);
    }
    m_replayed->rewind(true);
    m_keepsPipe = true;
}

qint64 InputFile::read(void *buffer, qint64 n)
{
    if (!m_source) {
        return -1;
    }
    const qint64 got = m_source->read(buffer, n);
    m_position += std::max<qint64>(got, 0);
    m_progressPosition.store(m_source->progressPosition(), std::memory_order_relaxed);
    return got;
}

double InputFile::getSize()
{
    // Found once: for compressed files the file system is asked, which is slow on network drives.
    double known = m_size;
    if (known == kSizeNotKnown) {
        const qint64 sourceSize = m_source && m_kind == Kind::Plain ? m_source->size() : -1;
        known = static_cast<double>(sourceSize >= 0 ? sourceSize
                                                    : KobiFileInfo(m_parameters, m_name).size());
        m_size = known;
    }
    return known;
}

qint64 InputFile::size()
{
    return m_source ? m_source->size() : -1;
}

float InputFile::getProgress() const
{
    // Called by other threads while a read is in progress: uses only the atomic members.
    const double size = m_size;
    if (size < 0) {
        return -1.0F;
    }
    const auto position = static_cast<double>(m_progressPosition.load(std::memory_order_relaxed));
    return size == 0 ? 1.0F : static_cast<float>(std::min(position / size, 1.0));
}

bool InputFile::seek(qint64 offset)
{
    if (!m_source || offset < 0 || !m_source->seek(offset)) {
        return false;
    }
    // In compressed files the progress is that of the compressed bytes.
    m_position = offset;
    m_progressPosition.store(m_source->progressPosition(), std::memory_order_relaxed);
    return true;
}

void InputFile::close()
{
    if (m_keepsPipe && m_source) {
        m_source.release(); // NOLINT(bugprone-unused-return-value): it is m_replayed
        m_replayed->rewind(false);
        input::keepPipe(m_name, std::unique_ptr<input::ReplayedSource>(m_replayed));
    }
    m_source.reset();
}

QString InputFile::memberName() const
{
    return m_source ? m_source->memberName() : QString();
}

/// Other kinds unpack from the start for each seek, and a pipe has no size.
bool InputFile::isRandomAccess() const
{
    return m_kind == input::Kind::Plain && m_source && m_source->size() >= 0;
}

SystemError InputFile::error() const
{
    return m_source ? m_source->error() : SystemError();
}

QString InputFile::reason() const
{
    return m_source ? m_source->failure() : m_openFailure;
}

QString InputFile::failure() const
{
    const bool hasFailed = m_source && !m_source->failure().isEmpty();
    return hasFailed ? QStringLiteral("ERROR: cannot read the file '%1'\n").arg(m_name) : QString();
}

namespace {

/// Wait for `pause`, or until the run ends. The slices bound how long a stopped run waits.
void waitWhileRunning(std::chrono::milliseconds pause, const RunControl &control)
{
    constexpr std::chrono::milliseconds kSlice(50);
    while (pause.count() > 0 && control.isRunning()) {
        std::this_thread::sleep_for(std::min(pause, kSlice));
        pause -= kSlice;
    }
}

} // namespace

bool retryOpening(const QString &name, const QString &reason, int retries,
                  const RunControl &control, const std::function<bool()> &open,
                  std::chrono::milliseconds pause)
{
    // Warnings without limit would fill the log of a run that waits for its input.
    if (retries < 0 && control.isRunning()) {
        MainUI::addLog(MainUI::Info,
                       QStringLiteral("Waiting: cannot read file '%1' yet\n").arg(name));
        logReason(reason);
    }
    while (true) {
        if (retries >= 0) {
            if (retries-- == 0) {
                return false;
            }
            MainUI::addLog(
                MainUI::Warning,
                QStringLiteral("Warning: cannot read file '%1': Attempting again...").arg(name));
        }
        if (!control.isRunning()) {
            return false;
        }
        waitWhileRunning(pause, control);
        if (open()) {
            return true;
        }
    }
}

} // namespace corvanta
