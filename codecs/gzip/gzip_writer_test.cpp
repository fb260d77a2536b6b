#include "base/byte_source.h"
#include "codecs/gzip/gzip_reader.h"
#include "codecs/gzip/gzip_writer.h"

#include <gtest/gtest.h>

using namespace corvanta;

namespace {

QByteArray unpacked(const QByteArray &packed)
{
    MemorySource source(packed);
    auto reader = *gzip::Reader::open(source);
    QByteArray content;
    QByteArray part(100'000, '\0');
    while (true) {
        const auto got = reader->read(part.data(), part.size());
        EXPECT_TRUE(got);
        if (!got || *got == 0) {
            return content;
        }
        content += part.first(*got);
    }
}

TEST(GzipWriter, ContentOfAnySizeComesBack)
{
    for (const qsizetype size : {0, 1, 1000, 3'000'000}) {
        QByteArray content(size, 'a');
        for (qsizetype i = 0; i < size; i += 7) {
            content[i] = static_cast<char>(i * 31 / 5);
        }
        MemorySink sink;
        gzip::Writer writer(sink);
        for (qsizetype at = 0; at < size; at += 70'000) {
            const QByteArray part = content.mid(at, 70'000);
            ASSERT_TRUE(writer.write(part.data(), part.size()));
        }
        ASSERT_TRUE(writer.finish());
        EXPECT_EQ(writer.size(), size);
        EXPECT_EQ(unpacked(sink.bytes()), content) << size;
        // Members in sequence are one file, which appending needs.
        EXPECT_EQ(unpacked(sink.bytes() + sink.bytes()), content + content);
    }
}

} // namespace
