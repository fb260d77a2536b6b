// Looks up files with the resolution of the file system: QFileInfo rounds times to milliseconds.
#include "cli/batch/file_state.h"

#include "corvanta/corvanta_graph.h"

#include <QFileInfo>

#include <chrono>
#include <filesystem>

using namespace Qt::StringLiterals;

bool FileState::examine()
{
    using namespace std::chrono;
    const QFileInfo info(QFileInfo::exists(name) ? name : fileOfInput(name));
    std::error_code error;
    const auto time = std::filesystem::last_write_time(info.filesystemFilePath(), error);
    if (error || info.isDir()) {
        return false;
    }
    size = info.size();
    modified = duration_cast<nanoseconds>(file_clock::to_sys(time).time_since_epoch()).count();
    return true;
}

FileState FileState::now() const
{
    FileState state{name};
    state.examine();
    return state;
}

QJsonObject FileState::json() const
{
    return {{u"name"_s, name}, {u"size"_s, size}, {u"modified"_s, modified}};
}

FileState FileState::of(const QJsonValue &json)
{
    return {json[u"name"].toString(), json[u"size"].toInteger(), json[u"modified"].toInteger()};
}
