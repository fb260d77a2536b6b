// Looks up files with the resolution of the file system: QFileInfo rounds times to milliseconds.
#include "cli/batch/file_state.h"

#include "corvanta/corvanta_graph.h"

#include <QFileInfo>

#include <chrono>
#include <filesystem>

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
