// Factory functions of the compression libraries, used by engine.cpp.
//
// The ISA-L functions exist only in builds with ISA-L (CORVANTA_HAVE_ISAL).
#pragma once
#include "codecs/deflate/deflater.h"
#include "codecs/deflate/inflater.h"

namespace corvanta::deflate {

/// `level`: see Level. The ISA-L deflater gives short blocks to zlib.
std::unique_ptr<Deflater> makeZlibDeflater(int level);
std::unique_ptr<Deflater> makeIsalDeflater(int level);
std::unique_ptr<Inflater> makeIsalInflater();

} // namespace corvanta::deflate
