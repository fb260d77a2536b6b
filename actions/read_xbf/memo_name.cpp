#include "actions/read_xbf/memo_name.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// `name` up to the last dot of its last part.
QString withoutExtension(const QString &name)
{
    const qsizetype slash = name.lastIndexOf(u'/');
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > slash ? name.left(dot) : name;
}

/// The existing file `path`, or one in the same folder that differs in letter case only.
QStringList existing(const QString &path)
{
    // Tables from systems that ignore letter case often have names such as A.DBF and a.dbt.
    if (QFileInfo::exists(path)) {
        return {path};
    }
    const QFileInfo info(path);
    for (const QString &entry : info.dir().entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
        if (entry.compare(info.fileName(), Qt::CaseInsensitive) == 0) {
            return {info.dir().filePath(entry)};
        }
    }
    return {};
}

} // namespace

QStringList memoFileNames(const QString &file, const InputFile &table)
{
    // dBase before FoxPro: a folder may hold both after a conversion.
    const QStringList extensions{u".dbt"_s, u".fpt"_s};
    QStringList names;
    if (table.kind() == input::Kind::Rar) {
        return names; // of a RAR archive only the first entry can be read
    }
    if (table.kind() == input::Kind::Zip) {
        // Members are found in any letter case. Listing them here would read the directory again.
        const QString stem = table.name() + u'@' + withoutExtension(table.memberName());
        for (const QString &extension : extensions) {
            names << stem + extension;
        }
        return names;
    }
    // A packed table may have a plain or a packed memo file.
    const bool isPacked = table.kind() != input::Kind::Plain;
    const QString packing = isPacked ? file.mid(file.lastIndexOf(u'.')) : QString();
    const QString stem = withoutExtension(isPacked ? withoutExtension(file) : file);
    for (const QString &extension : extensions) {
        names << existing(stem + extension);
        if (isPacked) {
            names << existing(stem + extension + packing);
        }
    }
    return names;
}

} // namespace corvanta
