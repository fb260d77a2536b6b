// Compressed files (.gz, .Z) as input streams: a codec's reader on top of a plain file.
#include "codecs/gzip/gzip_reader.h"
#include "codecs/lzw/lzw_reader.h"
#include "corvanta/files.h"
#include "corvanta/input_source.h"
#include "corvanta/log.h"
#include "corvanta/main_ui.h"
#include "host/src/read_reason.h"

#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::input {

namespace {

/// A file that a codec's reader unpacks. Seeking unpacks again from the start of the file.
template <class Reader> class PackedFile final : public InputSource
{
public:
    PackedFile(QString name, std::unique_ptr<MyReadFile> file, std::unique_ptr<Reader> reader)
        : m_name(std::move(name))
        , m_file(std::move(file))
        , m_reader(std::move(reader))
    {
    }

    qint64 read(void *buffer, qint64 n) override
    {
        auto got = m_reader->read(static_cast<char *>(buffer), n);
        if (got && *got == 0 && n > 0) {
            reportRest();
        }
        return got ? *got : fail(reasonOf(m_name, *m_file, got.fault().detail));
    }
    // Only unpacking the whole file would show it.
    qint64 size() override { return -1; }
    bool seek(qint64 offset) override
    {
        if (!m_file->seek(0)) {
            return false;
        }
        // Unpack again also for a position ahead: a reader that failed cannot continue.
        auto reader = Reader::open(*m_file);
        if (!reader) {
            fail(reasonOf(m_name, *m_file, reader.fault().detail));
            return false;
        }
        m_reader = *std::move(reader);
        clearFailure();
        return skipBytes(*this, offset);
    }
    qint64 progressPosition() const override { return m_file->position(); }

private:
    /// Once, though a reader may meet the end several times. Only in a run, which has a log of its
    /// own: the samples before it end at the same place.
    void reportRest()
    {
        if constexpr (std::is_same_v<Reader, gzip::Reader>) {
            const qint64 restBytes = m_reader->ignoredBytes();
            if (restBytes > 0 && m_log.sink != nullptr && !std::exchange(m_reported, true)) {
                m_log.sink->add(
                    {MainUI::Warning, m_log.action,
                     u"Warning: the gzip data of file '%1' ends before the file; what follows is not read (count: %2 bytes)\n"_s
                         .arg(m_name, QString::number(restBytes))});
            }
        }
    }

    const QString m_name;
    std::unique_ptr<MyReadFile> m_file;
    std::unique_ptr<Reader> m_reader; // reads m_file
    // Found now: a thread of a decoder that reads later may have no LogScope.
    const LogScope::Context m_log = LogScope::current();
    bool m_reported = false;
};

template <class Reader> Opened openPacked(const QString &name)
{
    auto opened = MyReadFile::open(name);
    if (!opened) {
        return Fault{OpenError::CannotOpen,
                     failureReason(name, FileUse::Read, opened.fault().code)};
    }
    std::unique_ptr<MyReadFile> file = *std::move(opened);
    // The reader refers to the file; both move into the PackedFile, the file stays in its place.
    auto reader = Reader::open(*file);
    if (!reader) {
        return Fault{OpenError::Refused, reasonOf(name, *file, reader.fault().detail)};
    }
    return std::unique_ptr<InputSource>(
        std::make_unique<PackedFile<Reader>>(name, std::move(file), *std::move(reader)));
}

} // namespace

Opened openGzipFile(GlobalParameters *, const QString &name)
{
    return openPacked<gzip::Reader>(name);
}

Opened openCompressFile(GlobalParameters *, const QString &name)
{
    return openPacked<lzw::Reader>(name);
}

} // namespace corvanta::input
