// Compression with ISA-L. Its output must depend only on the content and the level; two workarounds
// below make it so.
#include "codecs/deflate/engines.h"

#include <isa-l/igzip_lib.h>

#include <algorithm>
#include <array>

namespace corvanta::deflate {

namespace {

/// The output for shorter blocks depends on the address of the library's state: about one in a
/// thousand parts of a package differs between runs. zlib compresses these blocks.
constexpr size_t kShortBlockBytes = size_t(32) * 1024;
constexpr int kShortBlockLevel = 4;
constexpr std::array<size_t, 4> kLevelBufferBytes = {ISAL_DEF_LVL0_DEFAULT, ISAL_DEF_LVL1_DEFAULT,
                                                     ISAL_DEF_LVL2_DEFAULT, ISAL_DEF_LVL3_DEFAULT};

class IsalDeflater final : public Deflater
{
public:
    explicit IsalDeflater(int level)
        : m_level(static_cast<uint32_t>(level))
        , m_levelBuffer(kLevelBufferBytes.at(m_level))
    {
    }

    size_t compress(std::span<const char> dictionary, std::span<const char> block, Ending ending,
                    std::vector<char> &out) override
    {
        if (block.size() < kShortBlockBytes) {
            if (!m_shortBlocks) {
                m_shortBlocks = makeZlibDeflater(kShortBlockLevel);
            }
            return m_shortBlocks->compress(dictionary, block, ending, out);
        }
        start(dictionary);
        m_stream.next_in = bytesOf(block);
        m_stream.avail_in = static_cast<uint32_t>(block.size());
        m_stream.end_of_stream = ending == Ending::Last ? 1 : 0;
        m_stream.flush = ending == Ending::Last ? NO_FLUSH : SYNC_FLUSH;
        size_t used = 0;
        do { // a full output buffer means that there may be more output
            out.resize(std::max(out.size(), used + kRoomBytes));
            m_stream.next_out = reinterpret_cast<uint8_t *>(out.data() + used);
            m_stream.avail_out = kRoomBytes;
            isal_deflate(&m_stream);
            used += kRoomBytes - m_stream.avail_out;
        } while (m_stream.avail_out == 0);
        return used;
    }

private:
    void start(std::span<const char> dictionary)
    {
        isal_deflate_init(&m_stream);
        m_stream.level = m_level;
        m_stream.level_buf = m_levelBuffer.data();
        m_stream.level_buf_size = static_cast<uint32_t>(m_levelBuffer.size());
        if (!dictionary.empty()) {
            isal_deflate_set_dict(&m_stream, bytesOf(dictionary),
                                  static_cast<uint32_t>(dictionary.size()));
        }
    }
    static uint8_t *bytesOf(std::span<const char> bytes) // the library only reads them
    {
        return reinterpret_cast<uint8_t *>(const_cast<char *>(bytes.data()));
    }

    uint32_t m_level;
    std::vector<uint8_t> m_levelBuffer;
    isal_zstream m_stream;
    std::unique_ptr<Deflater> m_shortBlocks; // created when first used
};

} // namespace

std::unique_ptr<Deflater> makeIsalDeflater(int level)
{
    return std::make_unique<IsalDeflater>(level);
}

} // namespace corvanta::deflate
