// Decompression with ISA-L. It reads up to 8 bytes ahead.
#include "codecs/deflate/engines.h"

#include <isa-l/igzip_lib.h>

namespace corvanta::deflate {

namespace {

class IsalInflater final : public Inflater
{
public:
    IsalInflater() { isal_inflate_init(&m_state); }

    Step inflate(std::span<const char> input, std::span<char> output) override
    {
        m_state.next_in = reinterpret_cast<uint8_t *>(const_cast<char *>(input.data()));
        m_state.avail_in = oneCall(input.size());
        m_state.next_out = reinterpret_cast<uint8_t *>(output.data());
        m_state.avail_out = oneCall(output.size());
        const int status = isal_inflate(&m_state);
        const auto consumed = static_cast<qint64>(oneCall(input.size()) - m_state.avail_in);
        const size_t produced = oneCall(output.size()) - m_state.avail_out;
        if (status < 0) {
            return {State::Bad, consumed, produced};
        }
        // Statuses of 0 and above mean that input or room for output is used up. Whether the stream
        // has ended is part of the state.
        const bool isEnd = m_state.block_state == ISAL_BLOCK_FINISH;
        // The bits read ahead are the rest of the last byte and whole bytes after the stream.
        const qint64 ahead = isEnd ? m_state.read_in_length / 8 : 0;
        return {isEnd ? State::End : State::More, consumed - ahead, produced};
    }

    void reset() override { isal_inflate_reset(&m_state); }

private:
    inflate_state m_state;
};

} // namespace

std::unique_ptr<Inflater> makeIsalInflater()
{
    return std::make_unique<IsalInflater>();
}

} // namespace corvanta::deflate
