// The beginnings of image files; offsets in bytes, "<" is little endian, ">" big endian:
//
//   PNG    89 "PNG" 0D 0A 1A 0A, length, "IHDR", 16 >width, 20 >height
//   JPEG   FF D8, segments: FF marker >length ...; SOFn: >length, depth, >height, >width
//   GIF    "GIF8", 6 <width, 8 <height
//   BMP    "BM", 14 <size of the header, 18 <width, 22 <height (12: two bytes each)
//   TIFF   "II*" 0 or "MM" 0 "*", 4 offset of the entries: tag, type, count, value
//   EMF    <1, 24 <left top right bottom, 40 " EMF"
//   WMF    D7 CD C6 9A, 6 <left top right bottom (two bytes each); or <1 <9
//   SVG    <svg width="" height="" viewBox="x y width height">
#include "codecs/document/image_file.h"

#include "codecs/opc/markup_scan.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvanta::document {

namespace {

/// The extension of a kind and the type that [Content_Types].xml declares for it.
struct Names
{
    ImageKind kind;
    const char *extension;
    const char *mediaType;
};
// The first line of a kind has its usual extension.
constexpr std::array<Names, 10> kNames{{{ImageKind::Png, "png", "image/png"},
                                        {ImageKind::Jpeg, "jpeg", "image/jpeg"},
                                        {ImageKind::Jpeg, "jpg", "image/jpeg"},
                                        {ImageKind::Gif, "gif", "image/gif"},
                                        {ImageKind::Bmp, "bmp", "image/bmp"},
                                        {ImageKind::Tiff, "tiff", "image/tiff"},
                                        {ImageKind::Tiff, "tif", "image/tiff"},
                                        {ImageKind::Emf, "emf", "image/x-emf"},
                                        {ImageKind::Wmf, "wmf", "image/x-wmf"},
                                        {ImageKind::Svg, "svg", "image/svg+xml"}}};

/// The first line of a kind.
const Names &namesOf(ImageKind kind)
{
    const auto found = std::find_if(kNames.begin(), kNames.end(),
                                    [&](const Names &names) { return names.kind == kind; });
    return found != kNames.end() ? *found : kNames.front();
}

/// Numbers at offsets of a file; 0 after its end.
class Header
{
public:
    explicit Header(QByteArrayView file)
        : m_file(file)
    {
    }
    template <class T> T little(qsizetype at) const { return has<T>(at) ? fromLittle<T>(at) : T(); }
    template <class T> T big(qsizetype at) const { return has<T>(at) ? fromBig<T>(at) : T(); }
    /// In the byte order of a TIFF file.
    template <class T> T inOrder(qsizetype at) const
    {
        return m_file.startsWith('M') ? big<T>(at) : little<T>(at);
    }
    bool has(qsizetype at, QByteArrayView bytes) const
    {
        return m_file.size() >= at + bytes.size() && m_file.sliced(at, bytes.size()) == bytes;
    }
    qsizetype size() const { return m_file.size(); }

private:
    template <class T> bool has(qsizetype at) const
    {
        return at >= 0 && at <= m_file.size() - qsizetype(sizeof(T));
    }
    template <class T> T fromLittle(qsizetype at) const
    {
        return qFromLittleEndian<T>(m_file.data() + at);
    }
    template <class T> T fromBig(qsizetype at) const
    {
        return qFromBigEndian<T>(m_file.data() + at);
    }
    QByteArrayView m_file;
};

/// The header chunk comes first in every PNG file, so its fields have fixed offsets.
ImageInfo png(const Header &file)
{
    return {ImageKind::Png, double(file.big<quint32>(16)), double(file.big<quint32>(20))};
}

/// Whether a marker begins a frame: C0 to CF without DHT, JPG and DAC.
bool isFrame(quint8 marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

/// The size is in the frame header, after any number of segments with metadata.
ImageInfo jpeg(const Header &file)
{
    ImageInfo info{ImageKind::Jpeg};
    // Every segment is at least four bytes long, so that the loop ends.
    for (qsizetype at = 2; at + 4 <= file.size() && file.big<quint8>(at) == 0xFF;) {
        const auto marker = file.big<quint8>(at + 1);
        if (isFrame(marker)) {
            info.height = file.big<quint16>(at + 5);
            info.width = file.big<quint16>(at + 7);
            break;
        }
        at += marker == 0xFF ? 1 : 2 + qMax<qsizetype>(2, file.big<quint16>(at + 2));
    }
    return info;
}

ImageInfo bmp(const Header &file)
{
    const bool isShort = file.little<quint32>(14) == 12;
    const double width = isShort ? file.little<quint16>(18) : file.little<qint32>(18);
    const double height = isShort ? file.little<quint16>(20) : file.little<qint32>(22);
    // A negative height means that the first line is the upper one.
    return {ImageKind::Bmp, width, std::abs(height)};
}

ImageInfo tiff(const Header &file)
{
    constexpr quint16 kWidth = 256;
    constexpr quint16 kHeight = 257;
    constexpr quint16 kShort = 3;
    constexpr qsizetype kEntryBytes = 12;
    ImageInfo info{ImageKind::Tiff};
    const qsizetype directory = file.inOrder<quint32>(4);
    const int entries = file.inOrder<quint16>(directory);
    for (int i = 0; i < entries; ++i) {
        const qsizetype entry = directory + 2 + i * kEntryBytes;
        const auto tag = file.inOrder<quint16>(entry);
        const bool isShort = file.inOrder<quint16>(entry + 2) == kShort;
        const double value =
            isShort ? file.inOrder<quint16>(entry + 8) : file.inOrder<quint32>(entry + 8);
        info.width = tag == kWidth ? value : info.width;
        info.height = tag == kHeight ? value : info.height;
    }
    return info;
}

template <class T> ImageInfo metafile(ImageKind kind, const Header &file, qsizetype at)
{
    constexpr qsizetype kStep = sizeof(T);
    return {kind, std::abs(double(file.little<T>(at + 2 * kStep)) - file.little<T>(at)),
            std::abs(double(file.little<T>(at + 3 * kStep)) - file.little<T>(at + kStep))};
}

/// How many bytes at the beginning of a text belong to a number without a sign.
qsizetype numberSize(const QByteArray &text)
{
    const auto end = std::find_if(text.begin(), text.end(), [](char c) {
        return std::isdigit(static_cast<uchar>(c)) == 0 && c != '.';
    });
    return end - text.begin();
}

/// The number at the beginning of a length such as "12.5mm"; 0 for a percentage, which is relative.
double lengthOf(std::optional<QByteArrayView> value)
{
    const QByteArray text = value.value_or(QByteArrayView()).trimmed().toByteArray();
    return text.endsWith('%') ? 0 : text.first(numberSize(text)).toDouble();
}

/// The size of the view box, "x y width height"; `otherwise` if the tag has none.
ImageInfo viewBoxOf(const opc::Tag &tag, const ImageInfo &otherwise)
{
    QByteArray box = tag.attribute("viewBox").value_or(QByteArrayView()).toByteArray();
    const QList<QByteArray> numbers = box.replace(',', ' ').simplified().split(' ');
    return numbers.size() != 4
               ? otherwise
               : ImageInfo{ImageKind::Svg, numbers[2].toDouble(), numbers[3].toDouble()};
}

/// A drawing without both lengths has the size of its view box.
ImageInfo svg(const opc::Tag &tag)
{
    const ImageInfo info{ImageKind::Svg, lengthOf(tag.attribute("width")),
                         lengthOf(tag.attribute("height"))};
    const bool hasSize = info.width > 0 && info.height > 0;
    return hasSize ? info : viewBoxOf(tag, info);
}

std::optional<ImageInfo> svgInfo(QByteArrayView file)
{
    constexpr qsizetype kBeginning = 65536;
    // The root may follow comments and a document type, which a cursor does not pass.
    const qsizetype root = file.first(qMin(kBeginning, file.size())).indexOf("<svg");
    const bool isMarkup = file.startsWith('<') || file.startsWith("\xEF\xBB\xBF<");
    opc::Tag tag;
    qsizetype end = 0;
    if (!isMarkup || root < 0 || opc::scanMarkup(file, root, &tag, &end) != opc::Scan::Tag ||
        tag.local() != "svg") {
        return std::nullopt;
    }
    return svg(tag);
}

std::optional<ImageInfo> pictureInfo(const Header &file)
{
    if (file.has(0, "\x89PNG\r\n\x1A\n")) {
        return png(file);
    }
    if (file.has(0, "\xFF\xD8\xFF")) {
        return jpeg(file);
    }
    if (file.has(0, "GIF87a") || file.has(0, "GIF89a")) {
        return ImageInfo{ImageKind::Gif, double(file.little<quint16>(6)),
                         double(file.little<quint16>(8))};
    }
    if (file.has(0, "BM") && file.little<quint32>(14) >= 12 && file.little<quint32>(14) <= 124) {
        return bmp(file);
    }
    if (file.has(0, QByteArrayView("II*\0", 4)) || file.has(0, QByteArrayView("MM\0*", 4))) {
        return tiff(file);
    }
    return std::nullopt;
}

std::optional<ImageInfo> metafileInfo(const Header &file)
{
    if (file.little<quint32>(0) == 1 && file.has(40, " EMF")) {
        return metafile<qint32>(ImageKind::Emf, file, 24);
    }
    if (file.has(0, "\xD7\xCD\xC6\x9A")) {
        return metafile<qint16>(ImageKind::Wmf, file, 6);
    }
    if (file.little<quint16>(0) == 1 && file.little<quint16>(2) == 9) {
        return ImageInfo{ImageKind::Wmf};
    }
    return std::nullopt;
}

} // namespace

std::optional<ImageInfo> imageInfo(QByteArrayView file)
{
    const Header header(file);
    auto info = pictureInfo(header);
    info = info ? info : metafileInfo(header);
    return info ? info : svgInfo(file);
}

const char *extensionOf(ImageKind kind)
{
    return namesOf(kind).extension;
}

const char *mediaTypeOf(ImageKind kind)
{
    return namesOf(kind).mediaType;
}

std::optional<ImageKind> kindOfExtension(QByteArrayView extension)
{
    const auto found = std::find_if(kNames.begin(), kNames.end(), [&](const Names &names) {
        return extension == names.extension;
    });
    return found != kNames.end() ? std::optional(found->kind) : std::nullopt;
}

} // namespace corvanta::document
