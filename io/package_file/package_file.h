// Office packages as files: read through the host's files, and written to a temporary file that
// then replaces the target.
//
// On network drives reads use a cache of 64 KiB, and writes are collected in blocks of 5 MiB.
#pragma once
#include "codecs/zip/package_reader.h"
#include "codecs/zip/package_writer.h"
#include "corvanta/files.h"
#include "corvanta/target_file.h"

#include <functional>
#include <memory>

namespace corvanta {

/// A package opened for reading. Threads: one at a time.
class PackageInput
{
public:
    /// Open `name`, which is expanded already, and read its directory. `parameters` may be null.
    /// Errors: ReadFailed (also when there is no such file), NotAPackage, BadDirectory. The detail
    /// of the fault is the reason in words.
    static Result<std::unique_ptr<PackageInput>, zip::Error> open(GlobalParameters *parameters,
                                                                  const QString &name);
    /// Valid as long as this object.
    zip::PackageReader &reader() { return *m_reader; }
    /// Why the last read that failed did so; no error when the file only ended too early.
    SystemError error() const { return m_file->error(); }

private:
    PackageInput() = default;

    std::unique_ptr<MyReadFile> m_file;
    std::unique_ptr<zip::PackageReader> m_reader;
};

/// A package that replaces its target when it is complete; see TargetFile. Without commit() the
/// destructor discards it. Threads: as PackageWriter.
class PackageOutput
{
public:
    /// Returns false when the file cannot be created, and for a pipe. `target.retryWrite` is called
    /// on the thread that calls writer() or on one of the writer's worker threads, one at a time.
    bool open(const QString &name, TargetFile::Options target,
              const deflate::StreamOptions &options = {});
    bool isOpen() const { return m_writer != nullptr; }
    /// Only while open.
    zip::PackageWriter &writer() { return *m_writer; }
    /// The file below, for why a call failed.
    const TargetFile &target() const { return m_target; }

    /// Replace the target; call it after writer().close(). Returns false when that failed; the
    /// target is then unchanged.
    bool commit() { return release() && m_target.commit(); }
    /// The same with `rename` in place of the plain renaming.
    bool commit(const TargetFile::Rename &rename) { return release() && m_target.commit(rename); }

private:
    bool release();

    TargetFile m_target;
    std::unique_ptr<ByteSink> m_networkSink;
    std::unique_ptr<zip::PackageWriter> m_writer;
};

} // namespace corvanta
