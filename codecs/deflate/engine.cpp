// Chooses between the compression libraries of the build.
#include "codecs/deflate/engines.h"

#include <QString>

namespace corvanta::deflate {

namespace {

using namespace Qt::StringLiterals;

constexpr int kMinIsalLevel = 1; // level 0 makes incompressible content a quarter larger
constexpr int kMaxIsalLevel = 3;
constexpr int kMinZlibLevel = 1;
constexpr int kMaxZlibLevel = 9;

} // namespace

std::optional<Level> parseLevel(QStringView text)
{
    const qsizetype dash = text.indexOf(u'-');
    bool isNumber = false;
    const int level = text.mid(dash + 1).toInt(&isNumber);
    const QStringView engine = text.left(dash);
    if (dash < 0 || !isNumber) {
        return std::nullopt;
    }
    if (engine == "isal"_L1 && level >= kMinIsalLevel && level <= kMaxIsalLevel) {
        return Level{Engine::Isal, level};
    }
    if (engine == "zlib"_L1 && level >= kMinZlibLevel && level <= kMaxZlibLevel) {
        return Level{Engine::Zlib, level};
    }
    return std::nullopt;
}

std::unique_ptr<Deflater> makeDeflater(Level level)
{
    if (level.engine == Engine::Zlib) {
        return makeZlibDeflater(level.level);
    }
#ifdef CORVANTA_HAVE_ISAL
    return makeIsalDeflater(level.level);
#else
    // zlib 1 and 3 are nearest in speed. The bytes differ from those of a build with ISA-L.
    return makeZlibDeflater(level.level < kMaxIsalLevel ? kMinZlibLevel : kMaxIsalLevel);
#endif
}

std::unique_ptr<Inflater> makeInflater()
{
#ifdef CORVANTA_HAVE_ISAL
    return makeIsalInflater();
#else
    return makeZlibInflater();
#endif
}

} // namespace corvanta::deflate
