// A package is a ZIP file (ECMA-376 part 2); this maps the errors of the archive to those
// of packages. Layout of the archive: codecs/zip.
#include "codecs/opc/member_writer.h"

namespace corvanta::opc {

namespace {

Error errorFor(zip::Error error)
{
    switch (error) {
    case zip::Error::ReadFailed:
        return Error::Unreadable;
    case zip::Error::BadData:
    case zip::Error::BadSize:
    case zip::Error::BadChecksum:
        return Error::Damaged;
    case zip::Error::TooLarge:
        return Error::MemberTooLarge;
    case zip::Error::NoMember:
        return Error::NoMember;
    case zip::Error::Encrypted:
        return Error::Encrypted;
    case zip::Error::UnknownMethod:
        return Error::UnknownMethod;
    case zip::Error::BadLocalHeader:
        return Error::BadHeader;
    case zip::Error::BadName:
    case zip::Error::NameTaken:
        return Error::NotAdded;
    case zip::Error::NotAPackage:
    case zip::Error::BadDirectory:
        return Error::Unexpected;
    case zip::Error::WriteFailed:
    case zip::Error::Stopped:
    case zip::Error::NoMemory:
        break;
    }
    return Error::WriteFailed;
}

/// The result of a call of the package, with the fault of `member`.
Result<void, Error> named(const Result<void, zip::Error> &done, const QByteArray &member)
{
    return done ? Result<void, Error>() : memberFault(done.fault().code, member);
}

} // namespace

Fault<Error> memberFault(zip::Error error, const QByteArray &member)
{
    return {errorFor(error), QString::fromUtf8(member)};
}

Result<void, Error> MemberWriter::open(const QByteArray &name)
{
    m_open = name; // for the fault of close()
    return named(m_output.openMember(name), name);
}

Result<void, Error> MemberWriter::close()
{
    return named(m_output.closeMember(), m_open);
}

/// For members that are in memory as a whole.
Result<void, Error> MemberWriter::write(const QByteArray &name, const QByteArray &content)
{
    if (auto opened = open(name); !opened) {
        return opened;
    }
    auto written = named(m_output.write(content), name);
    return written ? close() : written;
}

Result<void, Error> MemberWriter::copy(zip::PackageReader &source, const zip::Member &member)
{
    return named(m_output.copyRaw(source, member), member.name);
}

Result<void, Error> MemberWriter::add(const zip::RawMember &raw)
{
    return named(m_output.addRaw(raw), raw.member.name);
}

Result<void, Error> MemberWriter::finish()
{
    return named(m_output.close(), {});
}

} // namespace corvanta::opc
