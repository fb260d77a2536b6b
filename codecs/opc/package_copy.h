// Copies a template package into a new one and changes some of its members.
//
// Order of the calls:
// 1. read(), mainPart(), readRelationships(), readInPieces(): read what the changes depend on.
// 2. contentTypes(), put(), reserve(): collect the changes.
// 3. copyMembers(): writes [Content_Types].xml unless it is reserved, copies every member that is
//    neither put nor reserved, and writes the members that are put.
// 4. The caller writes the reserved members, and calls MemberWriter::finish().
// Copied members keep their stored bytes, which are verified. Of several members of one name the
// first is copied, as readers see only that one.
#pragma once
#include "codecs/opc/content_types.h"
#include "codecs/opc/member_writer.h"
#include "codecs/opc/part_names.h"
#include "codecs/opc/relationships.h"
#include "codecs/zip/package_reader.h"

#include <functional>
#include <optional>
#include <set>
#include <utility>

namespace corvanta::opc {

/// Every fault names its part or member. Threads: one at a time.
class PackageCopy
{
public:
    /// `isRunning` is called between members and pieces; when it returns false, the call ends with
    /// Stopped. `source` must outlive the copy.
    PackageCopy(zip::PackageReader &source, std::function<bool()> isRunning);

    /// Which members the template has.
    const MemberNames &names() const { return m_names; }
    /// The name of the member that holds, or will hold, a part: as stored in the template, or else
    /// the part's own name.
    QByteArray memberOf(const QByteArray &part) const { return m_names.find(part).value_or(part); }

    /// The whole content of a part. Errors: those of a member, from Unreadable to BadHeader.
    Result<QByteArray, Error> read(const QByteArray &part);
    /// Pass the content of a part to `take` in pieces of up to 256 KiB. Ends at the first fault of
    /// `take`, which is returned. Errors: also Stopped, those of a member.
    Result<void, Error>
    readInPieces(const QByteArray &part,
                 const std::function<Result<void, Error>(QByteArrayView)> &take);
    /// The relationships of a part, or of the package for an empty name. A part without them gets a
    /// fault; write a new Relationships for it. Errors: those of a member and of
    /// Relationships::read.
    Result<Relationships, Error> readRelationships(const QByteArray &part);
    /// The part of the document itself, from the relationships of the package; `fallback` if they
    /// cannot be read or do not name it. If they name several parts, the last one.
    QByteArray mainPart(const QByteArray &fallback);
    /// The types that the new package declares, for reading and changing. Valid as long as the
    /// copy. Errors: those of a member and of ContentTypes::read.
    Result<ContentTypes *, Error> contentTypes();

    /// Replace the content of a part, or add the part; the last call for a part counts. The caller
    /// declares its content type and relationship.
    void put(const QByteArray &part, const QByteArray &content);
    /// Leave a part out of copyMembers(); the caller writes it afterwards, or not at all. Returns
    /// memberOf(part).
    QByteArray reserve(const QByteArray &part);

    /// Errors: Stopped, those of contentTypes(), MemberWriter::write() and copy().
    Result<void, Error> copyMembers(MemberWriter &output);
    /// Copy a reserved part unchanged; does nothing if the template does not have it. Errors: those
    /// of MemberWriter::copy().
    Result<void, Error> copyReserved(MemberWriter &output, const QByteArray &part);

private:
    zip::PackageReader &m_source;
    std::function<bool()> m_isRunning;
    MemberNames m_names;
    std::optional<ContentTypes> m_types;                  // once read
    std::set<QByteArray> m_notCopied;                     // member names
    std::vector<std::pair<QByteArray, QByteArray>> m_put; // member names and contents
};

} // namespace corvanta::opc
