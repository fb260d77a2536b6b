// Any bytes as a package on the disk: a copy that replaces it has the same members.
//
// The first byte chooses the drive and how the file is replaced; the package includes it.
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"
#include "io/package_file/package_file.h"
#include "io/replace/file_swap.h"

#include <QDir>
#include <QTemporaryDir>

using namespace corvanta;

namespace {

bool replaceFile(const QString &temporary, const QString &target)
{
    return bool(swapFile({temporary, target, target + QStringLiteral(".bak")}, {}));
}

/// Copy all members that can be copied; returns their content by name.
QHash<QByteArray, QByteArray> copy(zip::PackageReader &from, zip::PackageWriter &to)
{
    constexpr size_t kMaxMembers = 20;
    QHash<QByteArray, QByteArray> contents;
    for (size_t i = 0; i < std::min(kMaxMembers, from.members().size()); ++i) {
        const zip::Member &member = from.members()[i];
        if (to.copyRaw(from, member)) {
            contents.insert(member.name, *from.readWhole(member));
        }
    }
    return contents;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir dir;
    Feed feed(data, size);
    const int options = Feed(feed).byte();
    qputenv("CORVANTA_NET_DRIVE", (options & 1) != 0 ? dir.path().toUtf8() : QByteArray());
    const QString name = dir.filePath(QStringLiteral("a.zip"));
    QFile file(name);
    require(file.open(QIODevice::WriteOnly) &&
            file.write(feed.rest().data(), feed.rest().size()) >= 0);
    file.close();

    auto input = PackageInput::open(nullptr, name);
    if (!input) {
        return 0;
    }
    PackageOutput output;
    require(output.open(name, {1}, {{}, 0}));
    const QHash<QByteArray, QByteArray> contents = copy((*input)->reader(), output.writer());
    require(bool(output.writer().close()));
    input->reset();
    require((options & 2) != 0 ? output.commit(replaceFile) : output.commit());
    require(QDir(dir.path()).entryList(QDir::Files) == QStringList{QStringLiteral("a.zip")});
    const auto back = PackageInput::open(nullptr, name);
    require(back && (*back)->reader().members().size() == static_cast<size_t>(contents.size()));
    for (const zip::Member &member : (*back)->reader().members()) {
        require(*(*back)->reader().readWhole(member) == contents.value(member.name));
    }
    return 0;
}
