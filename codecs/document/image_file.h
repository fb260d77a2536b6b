// Recognises image files and their sizes by their first bytes.
//
// Only kinds that word processors show are known. Nothing is decoded. Public sources: PNG (W3C),
// JPEG (ITU-T T.81), GIF89a, BMP (MS-WMF BITMAPINFOHEADER), TIFF 6.0, EMF and WMF (MS-EMF, MS-WMF),
// SVG 1.1. Threads: pure functions.
#pragma once
#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace corvanta::document {

enum class ImageKind : quint8 { Png, Jpeg, Gif, Bmp, Tiff, Emf, Wmf, Svg };

/// What the beginning of an image file says about it.
struct ImageInfo
{
    ImageKind kind = ImageKind::Png;
    // In any unit: only their ratio counts. 0 if the file does not say them.
    double width = 0;
    double height = 0;
};

/// What the file is; nothing for a file that is not a known image.
std::optional<ImageInfo> imageInfo(QByteArrayView file);

/// The usual extension, "png", and the media type, "image/png". Constants.
const char *extensionOf(ImageKind kind);
const char *mediaTypeOf(ImageKind kind);
/// The kind of files with this extension, in lower case; nothing for an unknown one.
std::optional<ImageKind> kindOfExtension(QByteArrayView extension);

} // namespace corvanta::document
