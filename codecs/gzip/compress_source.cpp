#include "codecs/gzip/disk_file.h"
#include "codecs/gzip/input_source.h"
#include "codecs/lzw/lzw_reader.h"

namespace corvanta::input {

namespace {

class CompressSource final : public InputSource
{
public:
    CompressSource(std::unique_ptr<DiskFile> file, std::unique_ptr<lzw::Reader> reader)
        : m_file(std::move(file))
        , m_reader(std::move(reader))
    {
    }

    qint64 read(void *buffer, qint64 n) override
    {
        auto got = m_reader->read(static_cast<char *>(buffer), n);
        return got ? *got : fail(got.fault().detail);
    }
    qint64 size() override { return -1; }
    bool seek(qint64 offset) override
    {
        if (!m_file->seek(0)) {
            return false;
        }
        auto reader = lzw::Reader::open(*m_file);
        if (!reader) {
            fail(reader.fault().detail);
            return false;
        }
        m_reader = *std::move(reader);
        clearFailure();
        return skipBytes(*this, offset);
    }
    qint64 progressPosition() const override { return m_file->position(); }

private:
    std::unique_ptr<DiskFile> m_file;
    std::unique_ptr<lzw::Reader> m_reader; // reads m_file
};

} // namespace

Opened openCompress(const QString &path)
{
    auto file = DiskFile::open(path);
    if (!file) {
        return Fault<OpenError>{OpenError::CannotOpen};
    }
    auto reader = lzw::Reader::open(*file);
    if (!reader) {
        return Fault<OpenError>{OpenError::Refused, reader.fault().detail};
    }
    return std::unique_ptr<InputSource>(
        std::make_unique<CompressSource>(std::move(file), *std::move(reader)));
}

} // namespace corvanta::input
