// Reasons of failures with packages (DOCX, PPTX, XLSX), as parts of a sentence.
#include "actions/shared/package_reasons.h"

#include "codecs/opc/compound_file.h"
#include "corvanta/files.h"

using namespace Qt::StringLiterals;

namespace corvanta {

/// Empty for faults that are not those of a member.
QString memberReason(const Fault<opc::Error> &fault, const QString &kind,
                     const QString &systemReason)
{
    const auto about = [&](const char *what) {
        return u"the member '%1' of the %2 %3"_s.arg(fault.detail, kind, QLatin1StringView(what));
    };
    switch (fault.code) {
    case opc::Error::Unreadable:
        return systemReason.isEmpty() ? about("is truncated") : systemReason;
    case opc::Error::Damaged:
        return about("is damaged: its content does not match its size or checksum");
    case opc::Error::MemberTooLarge:
        return about("is too large");
    case opc::Error::NoMember:
        return about("is not there");
    case opc::Error::Encrypted:
        return about("is encrypted");
    case opc::Error::UnknownMethod:
        return about("is packed by an unsupported method");
    case opc::Error::BadHeader:
        return about("is damaged: its header does not match the directory of the package");
    case opc::Error::Encoding:
    case opc::Error::Malformed:
    case opc::Error::Unexpected:
    case opc::Error::TooLarge:
        // A fault of the whole package has no part.
        return fault.detail.isEmpty()
                   ? QString()
                   : u"the part '%1' of the %2 is not the XML text in UTF-8 that it should be"_s
                         .arg(fault.detail, kind);
    default:
        return {};
    }
}

/// Packages are ZIP files. The files of older versions, and encrypted packages, are compound files
/// instead, which begin with another signature.
QString compoundFileReason(GlobalParameters *parameters, const QString &name, const QString &kind,
                           const QString &extension, const QString &oldExtension)
{
    const std::unique_ptr<MyReadFile> file(MyReadFile::newMyReadFile(parameters, name, true, true));
    switch (file ? opc::compoundFileKind(*file) : opc::CompoundFile::No) {
    case opc::CompoundFile::Encrypted:
        return u"the %1 is encrypted with a password; save it without one first"_s.arg(kind);
    case opc::CompoundFile::Other:
        return u"the file is not an %1 %2, but an old one (%3) or an encrypted one"_s.arg(
            extension, kind, oldExtension);
    case opc::CompoundFile::No:
        break;
    }
    return {};
}

} // namespace corvanta
