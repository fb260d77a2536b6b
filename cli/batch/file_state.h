// Size and time of a file, by which a change is noticed.
#pragma once
#include <QString>

/// Plain data; equal states mean that the file has not been written in between.
struct FileState
{
    QString name;        ///< absolute
    qint64 size = 0;     ///< in bytes
    qint64 modified = 0; ///< nanoseconds since 1970

    /// Look up size and time of the file `name`; returns false if there is no such file. Of a
    /// member of an archive ("a.zip@b.csv") they are those of the archive.
    bool examine();
    bool operator==(const FileState &) const = default;
};
