// Factory functions of the compression libraries, used by engine.cpp, and what the libraries share.
//
// The ISA-L functions exist only in builds with ISA-L (CORVANTA_HAVE_ISAL).
#pragma once
#include "codecs/deflate/deflater.h"
#include "codecs/deflate/inflater.h"

#include <algorithm>
#include <limits>

namespace corvanta::deflate {

/// `level`: see Level. The ISA-L deflater gives short blocks to zlib.
std::unique_ptr<Deflater> makeZlibDeflater(int level);
std::unique_ptr<Deflater> makeIsalDeflater(int level);
std::unique_ptr<Inflater> makeIsalInflater();

constexpr int kRawWindowBits = -15; ///< of zlib's functions; negative: no zlib wrapper
/// The output of a deflater grows in steps of this size. Most blocks need few. At level 3 the
/// output of ISA-L depends on the size.
constexpr size_t kRoomBytes = size_t(64) * 1024;

/// The bytes of a buffer that one call gets: the libraries count them in 32 bits. Longer buffers
/// are used in several calls.
inline uint32_t oneCall(size_t bytes)
{
    return static_cast<uint32_t>(std::min<size_t>(bytes, std::numeric_limits<uint32_t>::max()));
}

} // namespace corvanta::deflate
