// The members of a package that a copy touches itself (ECMA-376 part 2):
//
//   [Content_Types].xml    written first, with the added declarations
//   _rels/.rels            read: the relationship of type ".../officeDocument" names the main part
//   all others             copied in the order of the template's directory, unless put or reserved
#include "codecs/opc/package_copy.h"

#include <algorithm>
#include <iterator>

namespace corvanta::opc {

namespace {

constexpr qint64 kPieceBytes = qint64(256) * 1024;

/// A fault of a text with the name of the part that holds it.
Fault<Error> partFault(const Fault<Error> &fault, const QByteArray &part)
{
    return {fault.code, QString::fromUtf8(part), fault.offset};
}

/// The names of all members, as stored and in their order.
std::vector<QByteArray> namesOf(const zip::PackageReader &source)
{
    std::vector<QByteArray> names;
    std::ranges::transform(source.members(), std::back_inserter(names), &zip::Member::name);
    return names;
}

} // namespace

PackageCopy::PackageCopy(zip::PackageReader &source, std::function<bool()> isRunning)
    : m_source(source)
    , m_isRunning(std::move(isRunning))
{
    m_names = MemberNames(namesOf(source));
}

Result<QByteArray, Error> PackageCopy::read(const QByteArray &part)
{
    const QByteArray member = memberOf(part);
    auto content = m_source.readWhole(member);
    return content ? Result<QByteArray, Error>(*std::move(content))
                   : memberFault(content.fault().code, member);
}

Result<void, Error>
PackageCopy::readInPieces(const QByteArray &part,
                          const std::function<Result<void, Error>(QByteArrayView)> &take)
{
    // The part may be larger than memory, so it is never read whole here.
    const QByteArray member = memberOf(part);
    auto stream = m_source.openStream(member);
    if (!stream) {
        return memberFault(stream.fault().code, member);
    }
    std::vector<char> piece(kPieceBytes);
    qint64 n = 0;
    while ((n = (*stream)->read(piece.data(), kPieceBytes)) > 0) {
        if (!m_isRunning()) {
            return Fault<Error>{Error::Stopped};
        }
        if (const auto taken = take({piece.data(), n}); !taken) {
            return partFault(taken.fault(), part);
        }
    }
    return n < 0 ? memberFault((*stream)->fault()->code, member) : Result<void, Error>();
}

Result<Relationships, Error> PackageCopy::readRelationships(const QByteArray &part)
{
    const QByteArray name = relationshipPartOf(part);
    const auto text = read(name);
    if (!text) {
        return text.fault();
    }
    auto relationships = Relationships::read(*text);
    if (!relationships) {
        return partFault(relationships.fault(), name);
    }
    return relationships;
}

QByteArray PackageCopy::mainPart(const QByteArray &fallback)
{
    QByteArray part = fallback;
    // Some programs write packages that only their well-known names make readable, so that a fault
    // here is not one of the package.
    if (const auto relationships = readRelationships({})) {
        for (const Relationship &one : relationships->entries()) {
            part = isToPart(one, "officeDocument") ? resolvedTarget({}, one.target) : part;
        }
    }
    return part;
}

Result<ContentTypes *, Error> PackageCopy::contentTypes()
{
    if (!m_types) {
        const auto text = read(kContentTypesPart);
        if (!text) {
            return text.fault();
        }
        auto types = ContentTypes::read(*text);
        if (!types) {
            return partFault(types.fault(), kContentTypesPart);
        }
        m_types = std::move(*types);
    }
    return &*m_types;
}

QByteArray PackageCopy::reserve(const QByteArray &part)
{
    return *m_notCopied.insert(memberOf(part)).first;
}

void PackageCopy::put(const QByteArray &part, const QByteArray &content)
{
    const QByteArray member = reserve(part);
    const auto same = std::find_if(m_put.begin(), m_put.end(),
                                   [&](const auto &put) { return put.first == member; });
    if (same != m_put.end()) {
        same->second = content;
        return;
    }
    m_put.emplace_back(member, content);
}

Result<void, Error> PackageCopy::copyMembers(MemberWriter &output)
{
    const auto types = contentTypes();
    if (!types) {
        return types.fault();
    }
    const bool isReserved = m_notCopied.count(memberOf(kContentTypesPart)) > 0;
    auto done = isReserved ? Result<void, Error>()
                           : output.write(reserve(kContentTypesPart), (*types)->text());
    // The names seen so far also skip later members of a name, which no reader can reach.
    std::set<QByteArray> seen = m_notCopied;
    for (const zip::Member &member : m_source.members()) {
        if (done && !m_isRunning()) {
            done = Fault<Error>{Error::Stopped};
        }
        if (done && seen.insert(member.name).second) {
            done = output.copy(m_source, member);
        }
    }
    for (const auto &[name, content] : m_put) {
        done = done ? output.write(name, content) : done;
    }
    return done;
}

Result<void, Error> PackageCopy::copyReserved(MemberWriter &output, const QByteArray &part)
{
    const zip::Member *const member = m_source.find(memberOf(part));
    return member != nullptr ? output.copy(m_source, *member) : Result<void, Error>();
}

} // namespace corvanta::opc
