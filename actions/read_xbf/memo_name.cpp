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

QStringList companionNames(const QString &extension, const QString &file, const InputFile &table)
{
    if (table.kind() == input::Kind::Rar) {
        return {}; // of a RAR archive only the first entry can be read
    }
    if (table.kind() == input::Kind::Zip) {
        // Members are found in any letter case. Listing them here would read the directory again.
        return {table.name() + u'@' + withoutExtension(table.memberName()) + extension};
    }
    if (table.kind() == input::Kind::Plain) {
        return existing(withoutExtension(file) + extension);
    }
    // A packed table may have a plain or a packed memo file.
    const QString packing = file.mid(file.lastIndexOf(u'.'));
    const QString name = withoutExtension(withoutExtension(file)) + extension;
    return existing(name) + existing(name + packing);
}

std::vector<MemoName> memoFileNames(const QString &file, const InputFile &table, bool isFoxPro)
{
    // A folder may hold both after a conversion: the table's own kind comes first.
    std::vector<MemoName> names;
    for (const bool isFpt : {isFoxPro, !isFoxPro}) {
        for (const QString &name : companionNames(isFpt ? u".fpt"_s : u".dbt"_s, file, table)) {
            names.push_back({name, isFpt});
        }
    }
    return names;
}

} // namespace corvanta
