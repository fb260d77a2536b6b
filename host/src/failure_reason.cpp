// Words the errors of the system. Its own text follows in parentheses, for users who know it.
#include "corvanta/failure_reason.h"

#include "corvanta/main_ui.h"
#include "corvanta/target_file.h"

#include <QFileInfo>

#include <array>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// For a file whose folder does not exist.
QString noFolderText(const QString &file, FileUse use)
{
    QString missing = u"the folder '%1' does not exist"_s.arg(QFileInfo(file).absolutePath());
    const QFileInfo above = existingAbove(file);
    if (use == FileUse::Write && !above.isDir()) {
        return u"%1, and '%2' is not a folder"_s.arg(missing, above.filePath());
    }
    if (use == FileUse::Write && !above.isWritable()) {
        return u"%1, and there is no permission to create it in '%2'"_s.arg(missing,
                                                                            above.filePath());
    }
    return missing;
}

/// The system has one error for all of these, but each needs another remedy.
QString notThereText(const QString &file, FileUse use)
{
    const QFileInfo info(file);
    if (file.isEmpty()) {
        return u"the name of the file is empty"_s;
    }
    if (!QFileInfo::exists(info.absolutePath())) {
        return noFolderText(file, use);
    }
    if (info.isSymLink()) {
        return u"the link leads to '%1', which is not there"_s.arg(info.symLinkTarget());
    }
    if (use == FileUse::Write) {
        return u"the folder '%1' accepts no such file"_s.arg(info.absolutePath());
    }
    // As for listFiles(), only the last part may be a pattern.
    const QString last = info.fileName();
    return last.contains(u'*') || last.contains(u'?')
               ? u"there is no file with this name, and none matches it as a pattern"_s
               : u"there is no file with this name"_s;
}

/// Writers replace files, so they need permission for the folder as well.
QString noPermissionText(const QString &file, FileUse use)
{
    const QFileInfo info(file);
    if (use == FileUse::Read) {
        return u"no permission to read the file"_s;
    }
    const QString folder = info.absolutePath();
    return info.exists() && !info.isWritable()
               ? u"no permission to write the file"_s
               : u"no permission to create files in the folder '%1'"_s.arg(folder);
}

struct FixedText
{
    int number;
    const char *text;
};

/// Errors whose text does not depend on the file.
constexpr std::array kFixedTexts{
    FixedText{EROFS, "the file system is read-only"},
    FixedText{ENOSPC, "the disk is full"},
    FixedText{EDQUOT, "the disk quota is used up"},
    FixedText{EFBIG, "the file exceeds the largest size that the system allows"},
    FixedText{EMFILE, "the program has too many open files: raise its limit (ulimit -n)"},
    FixedText{ENFILE, "the system has too many open files"},
    FixedText{ENAMETOOLONG, "the name is too long"},
    FixedText{ELOOP, "the links of the name lead in a circle"},
    FixedText{ENOMEM, "there is not enough memory"},
    FixedText{EIO, "the device reports an error"},
    FixedText{EXDEV, "the temporary file is on another file system"},
    FixedText{EPIPE, "the program that reads the pipe has ended"},
    FixedText{EBUSY, "another program uses the file"},
    FixedText{ETXTBSY, "another program uses the file"},
};

QString wordsFor(const QString &file, FileUse use, int number)
{
    switch (number) {
    case ENOENT:
        return notThereText(file, use);
    case ENOTDIR:
        return u"'%1' is not a folder"_s.arg(existingAbove(file).filePath());
    case EISDIR:
        return u"'%1' is a folder, not a file"_s.arg(file);
    case EACCES:
    case EPERM:
        return noPermissionText(file, use);
    case ESPIPE:
        return use == FileUse::Read
                   ? u"it is a pipe or a device, which is only read from start to end"_s
                   : u"it is a pipe or a device, but the format needs a file that can be changed "
                     "before its end: write to a file and copy it"_s;
    default:
        break;
    }
    for (const FixedText &fixed : kFixedTexts) {
        if (fixed.number == number) {
            return QString::fromLatin1(fixed.text);
        }
    }
    return u"the system refuses it"_s;
}

} // namespace

/// The nearest folder that exists: it decides whether a file can be created.
QFileInfo existingAbove(const QString &file)
{
    QFileInfo above(QFileInfo(file).absolutePath());
    while (!above.exists() && !above.isRoot()) {
        above.setFile(above.absolutePath());
    }
    return above;
}

QString failureReason(const QString &file, FileUse use, SystemError error,
                      const QString &folderRemedy)
{
    if (!error) {
        return {};
    }
    const bool hasRemedy = error.number == ENOENT && !folderRemedy.isEmpty() && !file.isEmpty() &&
                           !QFileInfo::exists(QFileInfo(file).absolutePath());
    return u"%1 (%2)%3"_s.arg(wordsFor(file, use, error.number), error.text(),
                              hasRemedy ? ": "_L1 + folderRemedy : QString());
}

QString failureReason(const TargetFile &target, const QString &folderRemedy)
{
    return failureReason(target.target(), FileUse::Write, target.error(), folderRemedy);
}

void logReason(const QString &reason)
{
    if (!reason.isEmpty()) {
        MainUI::addLog(MainUI::Info, u"Reason: %1.\n"_s.arg(reason));
    }
}

} // namespace corvanta
