// Opens Office packages as files, for reading through the host's file classes and for writing to a
// temporary file in the target's folder.
//
// On network drives, reads go through a cache of 64 KiB, and writes are collected in blocks of
// 5 MiB.
#pragma once
#include "codecs/zip/package_reader.h"
#include "codecs/zip/package_writer.h"
#include "corvanta/files.h"
#include "corvanta/target_file.h"

#include <functional>
#include <memory>

namespace corvanta {

/// A package that is open for reading. Owns the file. Threads: one thread at a time per object.
class PackageInput
{
public:
    /// Open the package `name`, which is expanded already, and read its directory.
    /// Errors: ReadFailed (also if the file does not exist), NotAPackage, BadDirectory.
    static Result<std::unique_ptr<PackageInput>, zip::Error> open(GlobalParameters *parameters,
                                                                  const QString &name);
    /// The members. Valid as long as this object.
    zip::PackageReader &reader() { return *m_reader; }

private:
    PackageInput() = default;

    std::unique_ptr<MyReadFile> m_file;
    std::unique_ptr<zip::PackageReader> m_reader;
};

/// A package that replaces its target when it is complete; see TargetFile. Without commit() the
/// target stays unchanged. Threads: as PackageWriter.
class PackageOutput
{
public:
    /// Create the temporary file for the target `name`. Returns false if it cannot be created.
    /// `target.retryWrite` is called on the thread that calls writer().
    bool open(const QString &name, TargetFile::Options target,
              const deflate::StreamOptions &options = {});
    bool isOpen() const { return m_writer != nullptr; }
    /// Where to write the members. Call after open() and before commit().
    zip::PackageWriter &writer() { return *m_writer; }

    /// Replace the target; call after writer().close(). Returns false after a failure; the target
    /// is then unchanged.
    bool commit() { return release() && m_target.commit(); }
    /// The same with `rename` in place of the plain rename.
    bool commit(const TargetFile::Rename &rename) { return release() && m_target.commit(rename); }

private:
    bool release();

    TargetFile m_target;
    std::unique_ptr<ByteSink> m_networkSink;
    std::unique_ptr<zip::PackageWriter> m_writer;
};

} // namespace corvanta
