// Opens a file as a workbook, and says what it is when it is something else.
//
// Users give files wrong extensions, so the content decides. A refused file is tried as the other
// format too, and the message then names the action that reads it.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "corvanta/action_base.h"
#include "io/input/input_file.h"

#include <memory>

namespace corvanta {

/// A workbook with the file that it is read from. Threads: as its reader.
struct OpenWorkbook
{
    // Destroyed in reverse order: the reader uses the source.
    std::unique_ptr<ByteSource> source;
    std::unique_ptr<sheet::WorkbookReader> reader;
};

/// Makes the reader of one format. The source outlives the reader.
using MakeReader = sheet::WorkbookResult<std::unique_ptr<sheet::WorkbookReader>> (*)(ByteSource &);

/// What differs between the formats of workbooks. Texts are parts of messages.
struct WorkbookFormat
{
    MakeReader makeReader = nullptr;
    MakeReader makeOther = nullptr; ///< of the other format, to see what a file is
    const char *kind = "";          ///< ".xlsx workbook"
    const char *otherKind = "";     ///< ".xls workbook", the one that the other action reads
    const char *otherAction = "";   ///< its name
};

enum class WorkbookOpenError : quint8 {
    Missing, ///< no such file, or not accessible
    Refused, ///< not a readable workbook
};

/// Open `name` (expanded). The detail of a fault is the reason in words; for Refused, what the file
/// is and what to do.
Result<OpenWorkbook, WorkbookOpenError> openWorkbook(const ActionBase &action,
                                                     const WorkbookFormat &format,
                                                     const QString &name, InputFile::Report report);

/// The words for a fault of an open workbook; `source` knows why the system refused a read.
QString describe(const Fault<sheet::WorkbookError> &fault, const ByteSource &source);

} // namespace corvanta
