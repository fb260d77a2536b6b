// The files in an archive, for a program that must choose one.
#include "codecs/rar/rar_entry.h"
#include "codecs/zip/zip_directory.h"
#include "corvanta/files.h"
#include "corvanta/input_source.h"
#include "host/src/read_reason.h"

#include <cerrno>

using namespace Qt::StringLiterals;

namespace corvanta::input {

namespace {

Result<QStringList, OpenError> zipMembers(const QString &path, MyReadFile &file)
{
    const auto members = zip::readDirectory(file);
    if (!members) {
        return Fault{OpenError::Refused,
                     reasonOf(path, file, u"it is not a zip archive, or it is damaged"_s)};
    }
    QStringList names;
    for (const zip::Member &member : *members) {
        // Old packers use other encodings; an input cannot name such a member here.
        const QString name = QString::fromUtf8(member.name);
        if (!name.endsWith(u'/')) {
            names << name;
        }
    }
    return names;
}

Result<QStringList, OpenError> rarMembers(const QString &path, MyReadFile &file)
{
    auto names = rar::entryNames(file);
    return names ? Result<QStringList, OpenError>(*std::move(names))
                 : Fault{OpenError::Refused, reasonOf(path, file, names.fault().detail)};
}

} // namespace

bool isArchive(const QString &name)
{
    return name.endsWith(".zip"_L1) || name.endsWith(".rar"_L1);
}

Result<QStringList, OpenError> archiveMembers(const QString &path)
{
    const auto file = MyReadFile::open(path);
    if (!file) {
        return Fault{OpenError::CannotOpen, failureReason(path, FileUse::Read, file.fault().code)};
    }
    if ((*file)->size() < 0) {
        return Fault{OpenError::Refused, failureReason(path, FileUse::Read, {ESPIPE})};
    }
    return path.endsWith(".zip"_L1) ? zipMembers(path, **file) : rarMembers(path, **file);
}

} // namespace corvanta::input
