#include "actions/write_parquet/parquet_output.h"

#include "base/platform/files.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A link is followed: what it leads to is replaced, not the link.
QString followed(const QString &name)
{
    const QFileInfo info(name);
    return info.isSymLink() ? info.symLinkTarget() : name;
}

} // namespace

bool ParquetOutput::Sink::write(const void *bytes, qint64 n)
{
    while (!m_file->write(bytes, n)) {
        if (!m_askRetry()) {
            return false;
        }
    }
    return true;
}

ParquetOutput::ParquetOutput(QString target, std::function<bool()> askRetry)
    : m_target(followed(std::move(target)))
    , m_askRetry(std::move(askRetry))
{
}

/// See that the target can be replaced, and remove what an earlier run left under the temporary
/// name. The target itself stays until the new file is complete.
QString ParquetOutput::makeWay()
{
    const QString cannotDelete = u"Cannot delete previous file '%1'."_s;
    const QFileInfo target(m_target);
    if (target.exists() && (target.isDir() || !QFileInfo(target.absolutePath()).isWritable())) {
        return cannotDelete.arg(m_target);
    }
    const bool isOrdinary = !target.exists() || target.isFile();
    if (KobiFileInfo::isNetDrive(m_target) || !isOrdinary) {
        return {};
    }
    m_temporary = m_target + "_TMP"_L1;
    const QFileInfo temporary(m_temporary);
    const bool isThere = temporary.exists() || temporary.isSymLink();
    if (isThere && (temporary.isDir() || !platform::removeFile(m_temporary))) {
        return cannotDelete.arg(m_temporary);
    }
    return {};
}

QString ParquetOutput::open(const std::vector<parquet::WriterColumn> &columns,
                            const parquet::WriteOptions &options,
                            parquet::PageCompressor &compressor)
{
    if (const QString message = makeWay(); !message.isEmpty()) {
        return message;
    }
    const bool isDirect = m_temporary.isEmpty();
    auto file = MyWriteFile::open(isDirect ? m_target : m_temporary,
                                  isDirect ? MyWriteFile::Existing::Truncate
                                           : MyWriteFile::Existing::Refuse);
    if (!file) {
        return u"Cannot open file '%1' for write."_s.arg(m_target);
    }
    m_sink = std::make_unique<Sink>(std::move(file), m_askRetry);
    m_writer = std::make_unique<parquet::FileWriter>(*m_sink, columns, options, compressor);
    m_pageSizeKiB = options.pageSizeKiB;
    const auto begun = m_writer->begin();
    return begun ? QString() : describe(begun.fault());
}

QString ParquetOutput::describe(const Fault<parquet::Error> &fault) const
{
    switch (fault.code) {
    case parquet::Error::TextTooLong:
        return u"\nERROR writing to Parquet File '%1': a text of column '%2' does not fit a page of %3 KiB\n"_s
            .arg(m_target, fault.detail, QString::number(m_pageSizeKiB));
    case parquet::Error::NoMemory:
        return u"\nERROR writing to Parquet File '%1': %2\n"_s.arg(m_target, fault.detail);
    case parquet::Error::WriteFailed:
    case parquet::Error::BadData:
    case parquet::Error::BadFooter:
    case parquet::Error::ShortRead:
    case parquet::Error::BadThrift:
    case parquet::Error::Unreadable:
        break;
    }
    return u"Cannot write to file '%1'."_s.arg(m_target);
}

QString ParquetOutput::addRow(const uchar *const *cells)
{
    const auto added = m_writer->addRow(cells);
    return added ? QString() : describe(added.fault());
}

QString ParquetOutput::commit()
{
    const auto finished = m_writer->finish();
    if (!finished) {
        return describe(finished.fault());
    }
    const bool isNew = !m_temporary.isEmpty() && !QFileInfo::exists(m_target);
    MyWriteFile &file = m_sink->file();
    bool isWritten = file.flush() && (isNew || file.sync());
    isWritten = file.close() && isWritten;
    m_writer.reset();
    m_sink.reset();
    if (!isWritten) {
        return u"Cannot write to file '%1'."_s.arg(m_target);
    }
    if (!m_temporary.isEmpty() && !renameTMPFile(m_target, nullptr, 0)) {
        return u"\nERROR cannot rename Parquet file '%1_TMP' to '%1'"_s.arg(m_target);
    }
    return {};
}

void ParquetOutput::discard()
{
    m_writer.reset();
    m_sink.reset();
    if (!m_temporary.isEmpty()) {
        platform::removeFile(m_temporary);
    }
}

} // namespace corvanta
