// Compressed files (.gz, .Z) as input streams: a codec's reader on top of a plain file.
#include "codecs/gzip/gzip_reader.h"
#include "codecs/lzw/lzw_reader.h"
#include "corvanta/files.h"
#include "corvanta/input_source.h"
#include "host/src/read_reason.h"

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
    const QString m_name;
    std::unique_ptr<MyReadFile> m_file;
    std::unique_ptr<Reader> m_reader; // reads m_file
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
