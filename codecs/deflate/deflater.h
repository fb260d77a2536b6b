// Compresses the blocks of a raw deflate stream (RFC 1951) independently of each other.
//
// A block uses the 32 KiB before it as its dictionary and ends at a byte boundary. Blocks that were
// compressed in parallel become one stream when they are written in order.
#pragma once
#include <QStringView>

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace corvanta::deflate {

/// Maximum distance of a match, and so the largest useful dictionary.
inline constexpr size_t kWindowBytes = size_t(32) * 1024;

enum class Engine : quint8 { Isal, Zlib };

/// A compression library and its level: 1 to 3 for ISA-L, 1 to 9 for zlib. The default is the fast
/// one: for sheet XML it is twelve times as fast as zlib 6, and the result is 17 % larger.
struct Level
{
    Engine engine = Engine::Isal;
    int level = 2;
};

/// Parse a level such as "isal-2" or "zlib-6". Returns std::nullopt for any other text.
std::optional<Level> parseLevel(QStringView text);

/// Whether more blocks of the stream follow.
enum class Ending : quint8 { Continued, Last };

/// Threads: one thread at a time per object; separate objects are independent.
class Deflater
{
public:
    Deflater() = default;
    Deflater(const Deflater &) = delete;
    Deflater &operator=(const Deflater &) = delete;
    virtual ~Deflater() = default;

    /// Compress `block` to the start of `out`. Returns the number of bytes used. `dictionary` is
    /// the part of the stream before the block, at most kWindowBytes bytes. `out` grows if it is
    /// too small and never shrinks, so that its memory can be reused. Throws std::bad_alloc; there
    /// is no other failure.
    virtual size_t compress(std::span<const char> dictionary, std::span<const char> block,
                            Ending ending, std::vector<char> &out) = 0;
};

/// Create a deflater of this level. In a build without ISA-L, zlib of the nearest speed replaces
/// it.
std::unique_ptr<Deflater> makeDeflater(Level level);

} // namespace corvanta::deflate
