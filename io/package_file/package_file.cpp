#include "io/package_file/package_file.h"

#include "base/block_buffered_sink.h"
#include "corvanta/failure_reason.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {
/// The steps of a zip reader near the end of the file stay inside one cached piece.
constexpr int kNetworkCacheBytes = 65536;

/// Why `name` is not a package that can be read.
QString reasonFor(const QString &name, SystemError error, const Fault<zip::Error> &fault)
{
    if (error) {
        return failureReason(name, FileUse::Read, error);
    }
    if (fault.code == zip::Error::NotAPackage) {
        return u"it is not a package (zip file), or it is truncated"_s;
    }
    return fault.detail.isEmpty() ? u"the package is damaged"_s
                                  : u"the package is damaged: %1"_s.arg(fault.detail);
}
} // namespace

Result<std::unique_ptr<PackageInput>, zip::Error> PackageInput::open(GlobalParameters *,
                                                                     const QString &name)
{
    std::unique_ptr<PackageInput> input(new PackageInput);
    auto file = MyReadFile::open(name);
    if (!file) {
        return Fault{zip::Error::ReadFailed, failureReason(name, FileUse::Read, file.fault().code)};
    }
    input->m_file = *std::move(file);
    // Each small read on a network drive costs a round trip.
    if (KobiFileInfo::isNetDrive(name)) {
        input->m_file =
            std::make_unique<MyReadFileCached>(input->m_file.release(), kNetworkCacheBytes);
    }
    auto reader = zip::PackageReader::open(*input->m_file);
    if (!reader) {
        return Fault{reader.fault().code, reasonFor(name, input->error(), reader.fault())};
    }
    input->m_reader = std::move(*reader);
    return input;
}

bool PackageOutput::open(const QString &name, TargetFile::Options target,
                         const deflate::StreamOptions &options)
{
    if (!m_target.open(name, std::move(target))) {
        return false;
    }
    // The writer goes back to the header of each member; a pipe would get a part of the package.
    if (!m_target.seek(0)) {
        m_target.discard();
        return false;
    }
    // Each stage refers to the one before it: release() ends them in reverse order.
    ByteSink *sink = &m_target;
    if (KobiFileInfo::isNetDrive(name)) {
        m_networkSink = std::make_unique<BlockBufferedSink>(*sink);
        sink = m_networkSink.get();
    }
    m_writer = std::make_unique<zip::PackageWriter>(*sink, options);
    return true;
}

/// End the use of the target file: the temporary file then has all bytes.
bool PackageOutput::release()
{
    // The writer refers to the sink, which may still hold bytes.
    m_writer.reset();
    const bool isFlushed = !m_networkSink || m_networkSink->flush();
    m_networkSink.reset();
    return isFlushed;
}

} // namespace corvanta
