// Recognizes UTF-16 text that has no byte-order mark.
//
// Threads: a pure function.
#pragma once
#include <string_view>

namespace corvanta {

/// The encoding of `text`, the beginning of a file, if it is UTF-16: "UTF-16LE" or "UTF-16BE"; null
/// for any other text, also for one with a few zero bytes in it. The units of Latin text have a
/// zero byte, all in the same half. Of texts in other scripts only the line ends, separators and
/// digits have one.
const char *unmarkedUtf16(std::string_view text);

} // namespace corvanta
