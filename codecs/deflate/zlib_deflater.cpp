// Compression with zlib, which every build has.
#include "codecs/deflate/engines.h"

#include <zlib.h>

#include <new>

namespace corvanta::deflate {

namespace {

constexpr int kMemoryLevel = 8; // the default of zlib

class ZlibDeflater final : public Deflater
{
public:
    explicit ZlibDeflater(int level)
    {
        // Only a lack of memory can make this fail.
        if (deflateInit2(&m_stream, level, Z_DEFLATED, kRawWindowBits, kMemoryLevel,
                         Z_DEFAULT_STRATEGY) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~ZlibDeflater() override { deflateEnd(&m_stream); }

    size_t compress(std::span<const char> dictionary, std::span<const char> block, Ending ending,
                    std::vector<char> &out) override
    {
        deflateReset(&m_stream);
        if (!dictionary.empty()) {
            deflateSetDictionary(&m_stream, bytesOf(dictionary),
                                 static_cast<uInt>(dictionary.size()));
        }
        m_stream.next_in = const_cast<Bytef *>(bytesOf(block));
        m_stream.avail_in = static_cast<uInt>(block.size());
        const int flush = ending == Ending::Last ? Z_FINISH : Z_SYNC_FLUSH;
        size_t used = 0;
        do { // a full output buffer means that there may be more output
            out.resize(std::max(out.size(), used + kRoomBytes));
            m_stream.next_out = reinterpret_cast<Bytef *>(out.data() + used);
            m_stream.avail_out = static_cast<uInt>(out.size() - used);
            ::deflate(&m_stream, flush);
            used = out.size() - m_stream.avail_out;
        } while (m_stream.avail_out == 0);
        return used;
    }

private:
    static const Bytef *bytesOf(std::span<const char> bytes)
    {
        return reinterpret_cast<const Bytef *>(bytes.data());
    }
    z_stream m_stream = {};
};

} // namespace

std::unique_ptr<Deflater> makeZlibDeflater(int level)
{
    return std::make_unique<ZlibDeflater>(level);
}

} // namespace corvanta::deflate
