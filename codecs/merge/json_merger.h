// Joins JSON texts: lines of values, or arrays, which become one array.
//
// The values are not decoded. Strings and brackets are tracked, so that a truncated part is found.
// Byte-order marks are left out. Threads: one at a time per object.
#pragma once
#include "codecs/merge/part_merger.h"

#include <string>

namespace corvanta {

class JsonMerger final : public PartMerger
{
public:
    enum class Form {
        Lines, ///< JSON Lines: a value per line
        Array, ///< an array of values
    };
    explicit JsonMerger(Form form)
        : m_form(form)
    {
    }
    /// Only the beginning is read: JSON has no columns to compare.
    Done addPart(ByteSource &source) override;
    /// The bracket of an array.
    Done begin(ByteSink &sink) override;
    /// The rows are the values.
    Result<qint64, MergeError> copyPart(ByteSource &source, ByteSink &sink) override;
    Done finish(ByteSink &sink) override;

private:
    // Functions that return a bool return false for bytes that are not JSON.
    class Scan;
    // `c` is the next byte of the part.
    bool takeByte(char c, Scan *scan);
    bool takeOfLine(char c, Scan *scan);
    bool takeOfArray(char c, Scan *scan);
    Done endPart(Scan *scan);

    Form m_form;
    bool m_hasValues = false; // in the result so far
    std::string m_out;        // not yet written
};

} // namespace corvanta
