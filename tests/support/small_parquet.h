// A small Parquet file whose every part a test can change, for damage that no writer produces.
#pragma once
#include "base/bytes.h"
#include "codecs/parquet/metadata/records.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace corvanta::parquet {

struct StoredPage
{
    PageHeader header;
    QByteArray body;
};

/// A file of one column "t" with two rows in one row group.
struct SmallFile
{
    FileMetaData meta;
    std::vector<StoredPage> pages;
    qint64 uncounted = 0; // bytes of the pages that the chunk does not count

    RowGroup &group() { return meta.rowGroups.front(); }
    ColumnChunk &chunk() { return group().columns.front(); }
    SchemaElement &column() { return meta.schema.back(); }
    DataPageHeader &page() { return *pages.front().header.dataPageHeader; }
    void setType(qint32 type) { column().type = chunk().metaData->type = type; }
    void setBody(const QByteArray &body)
    {
        StoredPage &page = pages.front();
        page.body = body;
        page.header.compressedPageSize = page.header.uncompressedPageSize = int(body.size());
    }
    void addDictionary(qint32 numValues, qint32 encoding)
    {
        StoredPage page;
        page.header.type = kDictionaryPage;
        page.header.dictionaryPageHeader = DictionaryPageHeader{numValues, encoding, {}};
        pages.insert(pages.begin(), std::move(page));
        setBody(QByteArray(8, '\1'));
    }
    /// Turn the page into one of version 2.
    void setLevels(qint32 bytes)
    {
        StoredPage &page = pages.front();
        page.header.type = kDataPageV2;
        page.header.dataPageHeader.reset();
        DataPageHeaderV2 &details = page.header.dataPageHeaderV2.emplace();
        details.numValues = details.numRows = 2;
        details.definitionLevelsByteLength = bytes;
    }

    QByteArray bytes()
    {
        QByteArray all = "PAR1";
        for (const StoredPage &page : pages) {
            CompactWriter out;
            EXPECT_TRUE(writeRecord(out, page.header));
            all += out.bytes() + page.body;
        }
        if (!group().columns.empty() && chunk().metaData) {
            chunk().metaData->totalCompressedSize = all.size() - 4 - uncounted;
        }
        CompactWriter out;
        EXPECT_TRUE(writeRecord(out, meta));
        QByteArray length(4, '\0');
        storeLE(quint32(out.bytes().size()), length.data());
        return all + out.bytes() + length + "PAR1";
    }
};

inline SmallFile smallFile()
{
    SmallFile file;
    file.meta.numRows = 2;
    file.meta.schema.resize(2);
    file.meta.schema[0].numChildren = 1;
    file.column().name = "t";
    file.column().repetitionType = kRequired;
    file.meta.rowGroups.resize(1);
    file.group().numRows = 2;
    file.group().columns.resize(1);
    file.chunk().metaData = std::make_unique<ColumnMetaData>();
    file.chunk().metaData->numValues = 2;
    file.chunk().metaData->dataPageOffset = 4;
    file.setType(kInt32);
    file.pages.resize(1);
    file.pages.front().header.dataPageHeader.emplace().numValues = 2;
    file.setBody(QByteArray(8, '\1'));
    return file;
}

} // namespace corvanta::parquet
