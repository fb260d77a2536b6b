#include "codecs/zip/zip_directory.h"

#include "base/bytes.h"
#include "base/checked.h"
#include "base/limits.h"
#include "codecs/zip/zip_format.h"

#include <algorithm>
#include <optional>

namespace corvanta::zip {

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 kMaxCommentBytes = 0xFFFF;

// What the end records say, and where they begin: the directory ends there.
struct Ending
{
    quint64 count = 0;
    quint64 directoryBytes = 0;
    quint64 directoryOffset = 0;
    quint32 disks = 0; // the numbers of this disk and of the directory's, both 0 in a single file
    qint64 offset = 0;

    bool isSaturated() const
    {
        return count == kSaturated16 || directoryBytes == kSaturated32 ||
               directoryOffset == kSaturated32;
    }
};

Fault<Error> badDirectory(QLatin1StringView detail, qint64 offset = -1)
{
    return {Error::BadDirectory, detail, offset};
}

// A comment may follow the record, and in files that were sent around also other bytes.
std::optional<Ending> findEnding(const QByteArray &tail, qint64 tailOffset)
{
    for (qsizetype at = tail.size() - kEndBytes; at >= 0; --at) {
        const char *record = tail.data() + at;
        if (loadLE<quint32>(record) != kEndSignature ||
            loadLE<quint16>(record + 20) > tail.size() - at - kEndBytes) {
            continue;
        }
        Ending ending;
        ending.disks = loadLE<quint32>(record + 4);
        ending.count = loadLE<quint16>(record + 10);
        ending.directoryBytes = loadLE<quint32>(record + 12);
        ending.directoryOffset = loadLE<quint32>(record + 16);
        ending.offset = tailOffset + at;
        return ending;
    }
    return std::nullopt;
}

std::optional<Ending> parseEnding64(const QByteArray &record, qint64 offset)
{
    if (loadLE<quint32>(record.data()) != kEnd64Signature) {
        return std::nullopt;
    }
    Ending ending;
    ending.disks = loadLE<quint32>(record.data() + 16) | loadLE<quint32>(record.data() + 20);
    ending.count = loadLE<quint64>(record.data() + 32);
    ending.directoryBytes = loadLE<quint64>(record.data() + 40);
    ending.directoryOffset = loadLE<quint64>(record.data() + 48);
    ending.offset = offset;
    return ending;
}

// The zip64 end record stands where its locator says, or, when bytes were put in front of the file,
// right before the locator. Without a locator the short record is all there is.
Result<Ending, Error> readEnding64(ByteSource &source, const Ending &ending)
{
    const qint64 locatorOffset = ending.offset - kLocator64Bytes;
    if (locatorOffset < kEnd64Bytes) {
        return ending;
    }
    const auto locator = readAt(source, locatorOffset, kLocator64Bytes);
    if (!locator) {
        return locator.fault();
    }
    if (loadLE<quint32>(locator->data()) != kLocator64Signature) {
        return ending;
    }
    const qint64 latest = locatorOffset - kEnd64Bytes;
    const auto told = narrow<qint64>(loadLE<quint64>(locator->data() + 8));
    for (const qint64 offset : {told.value_or(latest), latest}) {
        if (offset > latest) {
            continue;
        }
        const auto record = readAt(source, offset, kEnd64Bytes);
        if (!record) {
            return record.fault();
        }
        if (const auto found = parseEnding64(*record, offset)) {
            return *found;
        }
    }
    if (ending.isSaturated()) {
        return badDirectory("no zip64 end record"_L1, locatorOffset);
    }
    return ending;
}

Result<Ending, Error> readEnding(ByteSource &source)
{
    const qint64 size = source.size();
    if (size < kEndBytes) {
        return Fault{Error::NotAPackage, u"shorter than a zip file"_s, size};
    }
    const qint64 tailBytes = std::min(size, kEndBytes + kMaxCommentBytes);
    const auto tail = readAt(source, size - tailBytes, tailBytes);
    if (!tail) {
        return tail.fault();
    }
    const auto ending = findEnding(*tail, size - tailBytes);
    if (!ending) {
        return Fault{Error::NotAPackage, u"no end of central directory"_s, size};
    }
    return readEnding64(source, *ending); // some packers write it though nothing is saturated
}

// Replace the saturated fields by those of the zip64 extra field; false when it lacks one.
bool applyZip64(QByteArrayView extra, Member &member, quint64 &offset)
{
    quint64 size = static_cast<quint64>(member.size);
    quint64 compressedSize = static_cast<quint64>(member.compressedSize);
    quint64 *const fields[] = {&size, &compressedSize, &offset};
    if (std::none_of(std::begin(fields), std::end(fields),
                     [](const quint64 *field) { return *field == kSaturated32; })) {
        return true;
    }
    while (extra.size() >= 4) {
        const auto id = loadLE<quint16>(extra.data());
        const auto length = loadLE<quint16>(extra.data() + 2);
        extra = extra.sliced(4);
        if (length > extra.size()) {
            return false;
        }
        if (id != kExtraZip64) {
            extra = extra.sliced(length);
            continue;
        }
        QByteArrayView numbers = extra.first(length);
        for (quint64 *field : fields) {
            if (*field == kSaturated32) {
                if (numbers.size() < 8) {
                    return false;
                }
                *field = loadLE<quint64>(numbers.data());
                numbers = numbers.sliced(8);
            }
        }
        const auto narrowSize = narrow<qint64>(size);
        const auto narrowCompressed = narrow<qint64>(compressedSize);
        member.size = narrowSize.value_or(-1);
        member.compressedSize = narrowCompressed.value_or(-1);
        return narrowSize && narrowCompressed;
    }
    return false;
}

// One entry at the front of `directory`, which it is taken from. `shift`: bytes before the zip
// file.
std::optional<Member> takeEntry(QByteArrayView &directory, qint64 shift, qint64 directoryOffset)
{
    if (directory.size() < kCentralHeaderBytes ||
        loadLE<quint32>(directory.data()) != kCentralSignature) {
        return std::nullopt;
    }
    const char *entry = directory.data();
    const qsizetype nameBytes = loadLE<quint16>(entry + 28);
    const qsizetype extraBytes = loadLE<quint16>(entry + 30);
    const qsizetype commentBytes = loadLE<quint16>(entry + 32);
    const qsizetype rest = directory.size() - kCentralHeaderBytes;
    if (nameBytes + extraBytes + commentBytes > rest) {
        return std::nullopt;
    }
    Member member;
    member.flags = loadLE<quint16>(entry + 8);
    member.method = loadLE<quint16>(entry + 10);
    member.crc = loadLE<quint32>(entry + 16);
    member.compressedSize = loadLE<quint32>(entry + 20);
    member.size = loadLE<quint32>(entry + 24);
    member.name = directory.sliced(kCentralHeaderBytes, nameBytes).toByteArray();
    quint64 offset = loadLE<quint32>(entry + 42);
    const QByteArrayView extra = directory.sliced(kCentralHeaderBytes + nameBytes, extraBytes);
    if (!applyZip64(extra, member, offset) || offset > quint64(directoryOffset - shift)) {
        return std::nullopt;
    }
    member.headerOffset = shift + static_cast<qint64>(offset);
    directory = directory.sliced(kCentralHeaderBytes + nameBytes + extraBytes + commentBytes);
    return member;
}

// Tell each member where the next one begins. False when two share bytes: no packer makes such a
// file, but some that unpack to thousands of times their size are built so. One member that is
// listed twice under its name is harmless, and exists.
bool setDataLimits(std::vector<Member> &members, qint64 directoryOffset)
{
    std::vector<Member *> byOffset;
    byOffset.reserve(members.size());
    for (Member &member : members) {
        byOffset.push_back(&member);
    }
    std::sort(byOffset.begin(), byOffset.end(),
              [](const Member *a, const Member *b) { return a->headerOffset < b->headerOffset; });
    const Member *next = nullptr;
    for (auto it = byOffset.rbegin(); it != byOffset.rend(); ++it) {
        Member &member = **it;
        const bool isListedTwice = next && next->headerOffset == member.headerOffset;
        if (isListedTwice && next->name != member.name) {
            return false;
        }
        const qint64 nextOffset = next ? next->headerOffset : directoryOffset;
        member.dataLimit = isListedTwice ? next->dataLimit : nextOffset;
        const qint64 bytes = member.dataLimit - member.headerOffset;
        if (bytes - kLocalHeaderBytes - member.name.size() < member.compressedSize) {
            return false;
        }
        next = &member;
    }
    return true;
}

} // namespace

Result<QByteArray, Error> readAt(ByteSource &source, qint64 offset, qint64 n)
{
    QByteArray bytes(n, Qt::Uninitialized);
    if (!source.seek(offset) || readFully(source, bytes.data(), n) != n) {
        return Fault{Error::ReadFailed, {}, offset};
    }
    return bytes;
}

Result<std::vector<Member>, Error> readDirectory(ByteSource &source)
{
    const auto ending = readEnding(source);
    if (!ending) {
        return ending.fault();
    }
    if (ending->disks != 0) {
        return badDirectory("part of a set of several files"_L1, ending->offset);
    }
    const auto before = static_cast<quint64>(ending->offset);
    if (ending->directoryBytes > quint64(limits::kPackageDirectoryBytes) ||
        ending->directoryBytes > before ||
        ending->directoryOffset > before - ending->directoryBytes) {
        return badDirectory("directory outside the file"_L1, ending->offset);
    }
    const auto directoryBytes = static_cast<qint64>(ending->directoryBytes);
    const qint64 directoryOffset = ending->offset - directoryBytes;
    const qint64 shift = directoryOffset - static_cast<qint64>(ending->directoryOffset);
    const auto directory = readAt(source, directoryOffset, directoryBytes);
    if (!directory) {
        return directory.fault();
    }
    std::vector<Member> members;
    QByteArrayView rest = *directory;
    while (!rest.isEmpty()) {
        auto member = takeEntry(rest, shift, directoryOffset);
        if (!member) {
            return badDirectory("bad entry"_L1, ending->offset - rest.size());
        }
        members.push_back(std::move(*member));
    }
    // Packers without zip64 records let the count wrap around.
    if ((members.size() & kSaturated16) != (ending->count & kSaturated16)) {
        return badDirectory("wrong number of entries"_L1, ending->offset);
    }
    if (!setDataLimits(members, directoryOffset)) {
        return badDirectory("members overlap"_L1, directoryOffset);
    }
    return members;
}

} // namespace corvanta::zip
