// Joins texts with separators (CSV): one header, and the records of all texts.
//
// Records are copied as they are. They are written again only where the header of their text has
// another order, other columns, another separator, or lines that end with CR alone. The bytes are
// not converted: texts in UTF-8 and texts in another encoding are not joined. Threads: one at a
// time per object.
#pragma once
#include "codecs/csv/text_reader.h"
#include "codecs/merge/part_merger.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvanta::csv {

class TableMerger final : public PartMerger
{
public:
    /// `form` is how the texts are read, in UTF-8.
    TableMerger(MergeMatch match, TextForm form);

    /// Reads the header. Texts without any are damaged.
    Done addPart(ByteSource &source) override;
    Done begin(ByteSink &sink) override;
    /// The rows do not include empty lines, which are left out if there are several columns.
    Result<qint64, MergeError> copyPart(ByteSource &source, ByteSink &sink) override;
    Done finish(ByteSink &sink) override;

private:
    // Strings are UTF-8, or the other encoding of the texts.
    struct Part;
    /// What the bytes so far are. ASCII fits both.
    enum class Bytes : quint8 { Ascii, Utf8, Other };

    Result<std::unique_ptr<Part>, MergeError> open(ByteSource &source) const;
    Done checkHeader(const Part &part) const;
    Result<std::vector<int>, MergeError> columnsIn(const Part &part) const;
    Result<bool, MergeError> takeRecord(Part &part);
    void addRecord(const Part &part, const std::vector<int> &columns);
    void addField(const Field &field);
    void endLine(std::string_view record);
    Done checkEncoding(const Part &part);
    Done flush(ByteSink &sink);

    MergeMatch m_match;
    TextForm m_form;
    std::vector<std::string> m_names;
    std::map<std::string, int, std::less<>> m_indexes; // of columns, by name
    // Of the first part:
    std::string m_header;    // as it is, with its byte-order mark and line end; empty: none yet
    size_t m_firstCount = 0; // of its columns
    char m_separator = ',';
    std::string m_lineEnd = "\n";
    Bytes m_bytes = Bytes::Ascii; // of all parts so far
    bool m_isAscii = true;        // the current part so far
    std::string m_out;            // not yet written
};

} // namespace corvanta::csv
