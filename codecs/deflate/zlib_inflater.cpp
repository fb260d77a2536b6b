// Decompression with zlib, which every build has.
#include "codecs/deflate/engines.h"

#include <zlib.h>

#include <new>

namespace corvanta::deflate {

namespace {

class ZlibInflater final : public Inflater
{
public:
    ZlibInflater()
    {
        if (inflateInit2(&m_stream, kRawWindowBits) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~ZlibInflater() override { inflateEnd(&m_stream); }

    Step inflate(std::span<const char> input, std::span<char> output) override
    {
        m_stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(input.data()));
        m_stream.avail_in = oneCall(input.size());
        m_stream.next_out = reinterpret_cast<Bytef *>(output.data());
        m_stream.avail_out = oneCall(output.size());
        const int status = ::inflate(&m_stream, Z_NO_FLUSH);
        const auto consumed = static_cast<qint64>(oneCall(input.size()) - m_stream.avail_in);
        const size_t produced = oneCall(output.size()) - m_stream.avail_out;
        if (status == Z_STREAM_END) {
            return {State::End, consumed, produced};
        }
        // Z_BUF_ERROR: no progress was possible with these buffers. The stream is still valid.
        const bool isGood = status == Z_OK || status == Z_BUF_ERROR;
        return {isGood ? State::More : State::Bad, consumed, produced};
    }

    void reset() override { inflateReset(&m_stream); }

private:
    z_stream m_stream = {};
};

} // namespace

std::unique_ptr<Inflater> makeZlibInflater()
{
    return std::make_unique<ZlibInflater>();
}

} // namespace corvanta::deflate
