#include "actions/write_doc/image_store.h"

#include "base/limits.h"
#include "codecs/zip/package_writer.h"
#include "corvanta/files.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A file as it is now: a changed one has another key.
QString keyOf(const QString &file)
{
    const QFileInfo info(file);
    return u"%1|%2|%3"_s.arg(file, QString::number(info.size()),
                             QString::number(info.lastModified().toMSecsSinceEpoch()));
}

/// The first `most` bytes of a file, in pieces: its size may change while it is read.
Result<QByteArray, ImageFault> readBytes(const QString &name, qint64 most)
{
    constexpr qint64 kPiece = qint64(1) << 20;
    auto file = MyReadFile::open(name);
    if (!file) {
        return Fault{ImageFault{ImageError::CannotRead, file.fault().code}};
    }
    QByteArray bytes;
    while (bytes.size() < most) {
        const qint64 wanted = std::min(kPiece, most - bytes.size());
        const qsizetype at = bytes.size();
        bytes.resize(at + wanted);
        const qint64 n = readFully(**file, bytes.data() + at, wanted);
        bytes.truncate(at + std::max<qint64>(n, 0));
        if (n < 0) {
            return Fault{ImageFault{ImageError::CannotRead, (*file)->error()}};
        }
        if (n < wanted) {
            break;
        }
    }
    return bytes;
}

/// No usual extension is longer; others may be a part of the name after some dot.
constexpr qsizetype kLongestExtension = 8;

bool isLetterOrDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The extension of the file, where it can be part of a member's name; else that of the kind.
QByteArray mediaExtension(const QString &file, document::ImageKind kind)
{
    const QByteArray extension = QFileInfo(file).suffix().toLatin1();
    const bool isPlain = !extension.isEmpty() && extension.size() <= kLongestExtension &&
                         std::all_of(extension.begin(), extension.end(), isLetterOrDigit);
    return isPlain ? extension : QByteArray(document::extensionOf(kind));
}

} // namespace

Result<ImageStore::Image, ImageFault> ImageStore::image(const QString &file)
{
    const QString key = keyOf(file);
    if (const auto found = m_index.find(key); found != m_index.end()) {
        // The most recent images are first; the last ones go when there are too many.
        m_kept.splice(m_kept.begin(), m_kept, found->second);
        return m_kept.front().image;
    }
    // One byte more than a member may have shows that a file is too large.
    const auto bytes = readBytes(file, limits::kMemberBytes + 1);
    if (!bytes) {
        return bytes.fault();
    }
    if (bytes->size() > limits::kMemberBytes) {
        return Fault{ImageFault{ImageError::TooLarge}};
    }
    const auto info = document::imageInfo(*bytes);
    if (!info) {
        return Fault{ImageFault{ImageError::NotAnImage}};
    }
    // The member gets its name in each document.
    auto image = std::make_shared<const document::StoredImage>(document::StoredImage{
        zip::deflateMember("image", *bytes), mediaExtension(file, info->kind), *info});
    keep(key, image);
    return image;
}

void ImageStore::keep(const QString &key, const Image &image)
{
    m_kept.push_front({key, image});
    m_index[key] = m_kept.begin();
    m_bytes += image->content.bytes.size();
    while (m_bytes > kMaxBytes) {
        m_bytes -= m_kept.back().image->content.bytes.size();
        m_index.erase(m_kept.back().key);
        m_kept.pop_back();
    }
}

document::ImageInfo ImageStore::infoOf(const QString &file)
{
    constexpr qint64 kBeginning = qint64(1) << 20; // the size of a JPEG file follows its metadata
    const auto bytes = readBytes(file, kBeginning);
    // A link to a file that cannot be read is allowed; the picture then fills its box.
    const auto info = bytes ? document::imageInfo(*bytes) : std::nullopt;
    return info.value_or(document::ImageInfo());
}

} // namespace corvanta
