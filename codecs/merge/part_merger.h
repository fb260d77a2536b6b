// Joins files of one format to one file of that format.
//
//     for each part: merger.addPart(source);      // reads its columns
//     merger.begin(sink);
//     for each part: merger.copyPart(source, sink);
//     merger.finish(sink);
//
// Each part is opened twice, so that nothing is written before the columns of all parts are known,
// and no part is kept in memory. Threads: one at a time per object.
#pragma once
#include "base/byte_sink.h"
#include "base/byte_source.h"
#include "base/result.h"

namespace corvanta {

/// Which columns belong together.
enum class MergeMatch : quint8 {
    Same,  ///< all parts have the same columns in the same order
    Names, ///< the result has every column of every part; those of other parts are missing
};

/// A fault's detail is a text for the user, such as "column 'a' is missing", that does not name the
/// part.
enum class MergeError : quint8 {
    Unreadable,  ///< not a file of the format, or the system refuses a read
    Damaged,     ///< the content contradicts itself
    Unsupported, ///< a form of the format that is not merged
    Different,   ///< the columns or the encoding are not those of the parts before
    NoMemory,
    WriteFailed, ///< the sink failed
    TooLarge,    ///< the result exceeds what the format can hold
};

class PartMerger
{
public:
    using Done = Result<void, MergeError>;

    PartMerger() = default;
    PartMerger(const PartMerger &) = delete;
    PartMerger &operator=(const PartMerger &) = delete;
    virtual ~PartMerger() = default;

    /// Read the columns of the next part. `source` must seek and is at its beginning. Errors: all
    /// but WriteFailed and TooLarge.
    virtual Done addPart(ByteSource &source) = 0;
    /// Write what comes before the rows. Errors: Different, WriteFailed.
    virtual Done begin(ByteSink &sink) = 0;
    /// Copy the rows of a part, in the order of addPart(). Returns their number. Errors: all.
    virtual Result<qint64, MergeError> copyPart(ByteSource &source, ByteSink &sink) = 0;
    /// Write what comes after the rows. Errors: WriteFailed, TooLarge.
    virtual Done finish(ByteSink &sink) = 0;

protected:
    static Done write(QByteArrayView bytes, ByteSink &sink)
    {
        return sink.write(bytes.data(), bytes.size()) ? Done()
                                                      : Done(Fault{MergeError::WriteFailed});
    }
};

} // namespace corvanta
