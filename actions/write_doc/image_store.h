// Image files that documents store, read and compressed once.
#pragma once
#include "base/result.h"
#include "base/system_error.h"
#include "codecs/document/document_template.h"

#include <QString>

#include <list>
#include <map>
#include <memory>

namespace corvanta {

/// The cases that need messages of their own.
enum class ImageError {
    CannotRead, ///< missing or not readable
    NotAnImage, ///< not an image of a known kind
    TooLarge,   ///< more bytes than a member of a package may have
};

/// Why an image cannot be used.
struct ImageFault
{
    ImageError error = ImageError::CannotRead;
    SystemError reason = {}; ///< of CannotRead
};

/// Threads: one at a time.
class ImageStore
{
public:
    using Image = std::shared_ptr<const document::StoredImage>;

    /// The image in a file, whose name is expanded. A file that has changed since is read again.
    Result<Image, ImageFault> image(const QString &file);
    /// What the beginning of a file says, for pictures that are only linked; size 0 when it cannot
    /// be read or is not a known image.
    static document::ImageInfo infoOf(const QString &file);

private:
    /// Bytes of the images that are kept; the ones that were used last stay.
    static constexpr qsizetype kMaxBytes = qsizetype(64) << 20;
    struct Kept
    {
        QString key; ///< name, size and time of the last change
        Image image;
    };

    void keep(const QString &key, const Image &image);

    std::list<Kept> m_kept; // the one used last is the first
    std::map<QString, std::list<Kept>::iterator> m_index;
    qsizetype m_bytes = 0; // of m_kept
};

} // namespace corvanta
