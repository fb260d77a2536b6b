// codecs/deflate/engines.h
// The makers of the single engines, for engine.cpp.
#pragma once
#include "codecs/deflate/deflater.h"
#include "codecs/deflate/inflater.h"

namespace corvanta::deflate {

std::unique_ptr<Deflater> makeZlibDeflater(int level);
std::unique_ptr<Deflater> makeIsalDeflater(int level);
std::unique_ptr<Inflater> makeIsalInflater();

} // namespace corvanta::deflate
