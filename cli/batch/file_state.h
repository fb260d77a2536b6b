// Size and time of a file, by which a change is noticed.
#pragma once
#include <QJsonObject>
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
    /// The state of the file now; of one that is gone size and time are 0.
    FileState now() const;
    /// As lists and journals of a batch have it.
    QJsonObject json() const;
    static FileState of(const QJsonValue &json);
    bool operator==(const FileState &) const = default;
};
