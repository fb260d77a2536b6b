// The end of a zip file (APPNOTE.TXT 6.3, section 4.3). Numbers are little-endian:
//
//   central directory  entries; fields: zip_format.cpp
//   zip64 end record   50 4B 06 06; 16: u32 disk, 20: u32 disk of the directory, 32: u64 number of
//                      entries, 40: u64 directory size, 48: u64 directory offset; 56 bytes
//   zip64 locator      50 4B 06 07; 8: u64 offset of the zip64 end record; 20 bytes
//   end record         50 4B 05 06; 4: u16 disk, 6: u16 disk of the directory, 10: u16 number of
//                      entries, 12: u32 directory size, 16: u32 directory offset, 20: u16 comment
//                      length; 22 bytes; then the comment
//
// The zip64 records exist only in large packages. A field of all ones in the end record means that
// the zip64 end record has the value.
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

// The content of the end record, and its offset. The directory ends there.
struct EndRecord
{
    quint64 count = 0;
    quint64 directoryBytes = 0;
    quint64 directoryOffset = 0;
    quint32 disks = 0; // the numbers of both disks combined: 0 in a single file
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

// Search the end record from the end of the file. A comment follows it, and in some transferred
// files other bytes do too.
std::optional<EndRecord> findEndRecord(const QByteArray &tail, qint64 tailOffset)
{
    for (qsizetype at = tail.size() - kEndBytes; at >= 0; --at) {
        const char *record = tail.data() + at;
        if (loadLE<quint32>(record) != kEndSignature ||
            loadLE<quint16>(record + 20) > tail.size() - at - kEndBytes) {
            continue;
        }
        EndRecord ending;
        ending.disks = loadLE<quint32>(record + 4);
        ending.count = loadLE<quint16>(record + 10);
        ending.directoryBytes = loadLE<quint32>(record + 12);
        ending.directoryOffset = loadLE<quint32>(record + 16);
        ending.offset = tailOffset + at;
        return ending;
    }
    return std::nullopt;
}

std::optional<EndRecord> parseEndRecord64(const QByteArray &record, qint64 offset)
{
    if (loadLE<quint32>(record.data()) != kEnd64Signature) {
        return std::nullopt;
    }
    EndRecord ending;
    ending.disks = loadLE<quint32>(record.data() + 16) | loadLE<quint32>(record.data() + 20);
    ending.count = loadLE<quint64>(record.data() + 32);
    ending.directoryBytes = loadLE<quint64>(record.data() + 40);
    ending.directoryOffset = loadLE<quint64>(record.data() + 48);
    ending.offset = offset;
    return ending;
}

// The zip64 end record is where its locator says, or directly before the locator if bytes were
// added before the zip file. Returns std::nullopt if it is at neither place.
Result<std::optional<EndRecord>, Error> findEndRecord64(ByteSource &source, QByteArrayView locator,
                                                        qint64 locatorOffset)
{
    const qint64 latest = locatorOffset - kEnd64Bytes;
    const auto declared = narrow<qint64>(loadLE<quint64>(locator.data() + 8));
    for (const qint64 offset : {declared.value_or(latest), latest}) {
        if (offset > latest) {
            continue;
        }
        const auto record = readAt(source, offset, kEnd64Bytes);
        if (!record) {
            return record.fault();
        }
        if (const auto found = parseEndRecord64(*record, offset)) {
            return found;
        }
    }
    return std::optional<EndRecord>();
}

// Returns `ending` if there is no zip64 end record and none is needed.
Result<EndRecord, Error> readEndRecord64(ByteSource &source, const EndRecord &ending)
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
    const auto found = findEndRecord64(source, *locator, locatorOffset);
    if (!found) {
        return found.fault();
    }
    if (*found) {
        return **found;
    }
    if (ending.isSaturated()) {
        return badDirectory("no zip64 end record"_L1, locatorOffset);
    }
    return ending;
}

Result<EndRecord, Error> readEndRecord(ByteSource &source)
{
    const qint64 size = source.size();
    if (size < kEndBytes) {
        return Fault{Error::NotAPackage, {}, size};
    }
    const qint64 tailBytes = std::min(size, kEndBytes + kMaxCommentBytes);
    const auto tail = readAt(source, size - tailBytes, tailBytes);
    if (!tail) {
        return tail.fault();
    }
    const auto ending = findEndRecord(*tail, size - tailBytes);
    if (!ending) {
        return Fault{Error::NotAPackage, {}, size};
    }
    return readEndRecord64(source, *ending); // some packers write it although no field is saturated
}

// The content of the zip64 extra field; nothing if there is none, or if the extra fields are
// damaged.
std::optional<QByteArrayView> findZip64(QByteArrayView extra)
{
    while (extra.size() >= 4) {
        const auto id = loadLE<quint16>(extra.data());
        const auto length = loadLE<quint16>(extra.data() + 2);
        extra = extra.sliced(4);
        if (length > extra.size()) {
            return std::nullopt;
        }
        if (id == kExtraZip64) {
            return extra.first(length);
        }
        extra = extra.sliced(length);
    }
    return std::nullopt;
}

// Replace a saturated field with the next number of the zip64 extra field. Returns false if there
// are no more numbers.
bool takeZip64(QByteArrayView &numbers, quint64 &field)
{
    if (field != kSaturated32) {
        return true;
    }
    if (numbers.size() < 8) {
        return false;
    }
    field = loadLE<quint64>(numbers.data());
    numbers = numbers.sliced(8);
    return true;
}

// Replace the saturated fields with those of the zip64 extra field. Returns false if it lacks one,
// or if a size does not fit 63 bits.
bool applyZip64(QByteArrayView extra, Member &member, quint64 &offset)
{
    quint64 size = static_cast<quint64>(member.size);
    quint64 compressedSize = static_cast<quint64>(member.compressedSize);
    if (size != kSaturated32 && compressedSize != kSaturated32 && offset != kSaturated32) {
        return true;
    }
    auto numbers = findZip64(extra);
    if (!numbers || !takeZip64(*numbers, size) || !takeZip64(*numbers, compressedSize) ||
        !takeZip64(*numbers, offset)) {
        return false;
    }
    const auto narrowSize = narrow<qint64>(size);
    const auto narrowCompressed = narrow<qint64>(compressedSize);
    member.size = narrowSize.value_or(-1);
    member.compressedSize = narrowCompressed.value_or(-1);
    return narrowSize && narrowCompressed;
}

// The facts in the fixed part of a directory entry.
Member parseEntry(const char *entry)
{
    Member member;
    member.flags = loadLE<quint16>(entry + 8);
    member.method = loadLE<quint16>(entry + 10);
    member.crc = loadLE<quint32>(entry + 16);
    member.compressedSize = loadLE<quint32>(entry + 20);
    member.size = loadLE<quint32>(entry + 24);
    return member;
}

// Remove one entry from the start of `directory`. `shift` is the number of bytes before the zip
// file. Returns nothing if the entry is damaged.
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
    Member member = parseEntry(entry);
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

// Set the limit of each member's data: the start of the next member. Returns false if two members
// share bytes. No packer writes such files, but archives that expand to thousands of times their
// size are built so. A member that is listed twice under the same name is accepted.
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
    const bool isRead = source.seek(offset) && readFully(source, bytes.data(), n) == n;
    return isRead ? Result<QByteArray, Error>(std::move(bytes))
                  : Fault{Error::ReadFailed, {}, offset};
}

namespace {

// Whether the directory is in one file and inside it.
Result<void, Error> checkEndRecord(const EndRecord &ending)
{
    if (ending.disks != 0) {
        return badDirectory("part of a set of several files"_L1, ending.offset);
    }
    const auto before = static_cast<quint64>(ending.offset);
    if (ending.directoryBytes > quint64(limits::kPackageDirectoryBytes) ||
        ending.directoryBytes > before || ending.directoryOffset > before - ending.directoryBytes) {
        return badDirectory("directory outside the file"_L1, ending.offset);
    }
    return {};
}

Result<std::vector<Member>, Error> parseEntries(QByteArrayView directory, const EndRecord &ending,
                                                qint64 directoryOffset)
{
    const qint64 shift = directoryOffset - static_cast<qint64>(ending.directoryOffset);
    std::vector<Member> members;
    while (!directory.isEmpty()) {
        auto member = takeEntry(directory, shift, directoryOffset);
        if (!member) {
            return badDirectory("bad entry"_L1, ending.offset - directory.size());
        }
        members.push_back(std::move(*member));
    }
    // In packages without zip64 records the count may have wrapped around.
    if ((members.size() & kSaturated16) != (ending.count & kSaturated16)) {
        return badDirectory("wrong number of entries"_L1, ending.offset);
    }
    return members;
}

} // namespace

Result<std::vector<Member>, Error> readDirectory(ByteSource &source)
{
    const auto ending = readEndRecord(source);
    if (!ending) {
        return ending.fault();
    }
    if (auto checked = checkEndRecord(*ending); !checked) {
        return checked.fault();
    }
    const auto directoryBytes = static_cast<qint64>(ending->directoryBytes);
    const qint64 directoryOffset = ending->offset - directoryBytes;
    const auto directory = readAt(source, directoryOffset, directoryBytes);
    if (!directory) {
        return directory.fault();
    }
    auto members = parseEntries(*directory, *ending, directoryOffset);
    if (members && !setDataLimits(*members, directoryOffset)) {
        return badDirectory("members overlap"_L1, directoryOffset);
    }
    return members;
}

} // namespace corvanta::zip
