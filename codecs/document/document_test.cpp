#include "codecs/document/document_text.h"
#include "codecs/document/image_file.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvanta::document {

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

constexpr char16_t kUnits[] = u"<&\"\\n]]>\r\n\n\U0001F600\xD800\u00E9\uFFFE";

QByteArray text(QStringView units, TextPlace place, TextCounts *counts)
{
    TextRules rules;
    rules.place = place;
    rules.breaksAtBackslashN = true;
    return documentText(units, rules, counts);
}

} // namespace

TEST(ImageFile, KnowsKindsAndSizes)
{
    struct Case
    {
        QByteArray file;
        ImageKind kind;
        double width;
        double height;
    };
    const QByteArray bmp = hex("424d") + QByteArray(12, '\0') + hex("280000000a000000ecffffff");
    const QByteArray emf =
        hex("01000000") + QByteArray(20, '\0') + hex("0a000000ecffffff1e0000000a000000") + " EMF";
    const std::vector<Case> cases{
        {hex("89504e470d0a1a0a0000000d494844520000000a00000014"), ImageKind::Png, 10, 20},
        {hex("ffd8ffe0000400000fffc00011080014000a"), ImageKind::Jpeg, 0, 0}, // no marker
        {hex("ffd8ffe000040000ffffc2001108001e000a"), ImageKind::Jpeg, 10, 30},
        {"GIF89a" + hex("0a001400"), ImageKind::Gif, 10, 20},
        {bmp, ImageKind::Bmp, 10, 20},
        {hex("424d") + QByteArray(12, '\0') + hex("0c0000000a001400"), ImageKind::Bmp, 10, 20},
        {hex("49492a00080000000200000103000100000007000000010104000100000009000000"),
         ImageKind::Tiff, 7, 9},
        {hex("4d4d002affffffff"), ImageKind::Tiff, 0, 0},
        {emf, ImageKind::Emf, 20, 30},
        {hex("d7cdc69a0000000000000a001400"), ImageKind::Wmf, 10, 20},
        {hex("01000900"), ImageKind::Wmf, 0, 0},
        {"<?xml version='1.0'?><!DOCTYPE svg><svg width=\"30mm\" height='15mm'/>", ImageKind::Svg,
         30, 15},
        {"<svg width='100%' viewBox='0,0 4 3'></svg>", ImageKind::Svg, 4, 3},
    };
    for (const Case &one : cases) {
        const auto info = imageInfo(one.file);
        ASSERT_TRUE(info) << one.file.toHex().constData();
        EXPECT_EQ(info->kind, one.kind);
        EXPECT_EQ(info->width, one.width);
        EXPECT_EQ(info->height, one.height);
        EXPECT_EQ(kindOfExtension(extensionOf(one.kind)), one.kind);
        // A file that is cut anywhere is read without a fault.
        for (qsizetype n = 0; n < one.file.size(); ++n) {
            imageInfo(one.file.first(n));
        }
    }
    for (const char *const none : {"", "text", "BM text, not a picture", "<html><svg", "RIFF"}) {
        EXPECT_FALSE(imageInfo(none)) << none;
    }
}

TEST(DocumentText, EscapesAtEveryPlace)
{
    for (qsizetype at = 0; at < 20; ++at) {
        const QString filler(at, u'x');
        const QByteArray before(at, 'x');
        TextCounts counts;
        const QString units = filler + QString::fromUtf16(kUnits);
        EXPECT_EQ(text(units, TextPlace::Word, &counts),
                  before + "&lt;&amp;\"<w:br/>]]&gt;<w:br/><w:br/>\xF0\x9F\x98\x80"
                           "\xEF\xBF\xBD\xC3\xA9\xEF\xBF\xBD");
        EXPECT_EQ(counts.replaced, 2);
        EXPECT_EQ(counts.innerBreaks, 3);
        EXPECT_EQ(text(filler + u"\"\\n\n"_s, TextPlace::Attribute, &counts),
                  before + "&quot;&#10;&#10;");
        EXPECT_EQ(text(filler + u"\\n\r\n>"_s, TextPlace::Slide, &counts), before + "\r\r\n>");
    }
}

} // namespace corvanta::document
