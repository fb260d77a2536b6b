// codecs/deflate/deflater.h
// Compress single blocks of one raw deflate stream (RFC 1951), each without knowing the others'
// output.
//
// A block takes the 32 KiB before it as its dictionary and ends on a byte boundary, so that blocks
// that were compressed side by side are joined by writing them one after the other.
#pragma once
#include <QStringView>

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace corvanta::deflate {

/// How far back a match may reach: more dictionary than this is of no use.
inline constexpr size_t kWindowBytes = 32 * 1024;

enum class Engine : quint8 { Isal, Zlib };

/// An engine and its level: ISA-L has 1 .. 3, zlib 1 .. 9. The default is the fast one: on sheet
/// XML twelve times as fast as zlib 6 for a result 17 % larger.
struct Level
{
    Engine engine = Engine::Isal;
    int level = 2;
};

/// A level as people write it: "isal-2", "zlib-6". Nothing when there is no such level.
std::optional<Level> parseLevel(QStringView text);

/// What follows a block: more of the same stream, or nothing.
enum class Ending : quint8 { Continued, Last };

/// Threads: one at a time; objects share nothing.
class Deflater
{
public:
    Deflater() = default;
    Deflater(const Deflater &) = delete;
    Deflater &operator=(const Deflater &) = delete;
    virtual ~Deflater() = default;

    /// Compress `block` into the front of `out` and return the bytes used there. `dictionary` is
    /// what comes before the block in the stream, up to kWindowBytes of it. `out` grows when it is
    /// too small and never shrinks, so that it can be used again. A bad_alloc is the only failure.
    virtual size_t compress(std::span<const char> dictionary, std::span<const char> block,
                            Ending ending, std::vector<char> &out) = 0;
};

/// A deflater of this level; where ISA-L is not part of the build, zlib's next fastest.
std::unique_ptr<Deflater> makeDeflater(Level level);

} // namespace corvanta::deflate
