// Opens a file as a workbook, and says what it is when it is something else.
//
// Users give files wrong extensions, so the content decides. A refused file is tried as the other
// format too, and the message then names the action that reads it.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "corvanta/action_base.h"
#include "io/input/input_file.h"

#include <memory>
#include <optional>

namespace corvanta {

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

/// A workbook with the file that it is read from. Threads: as its reader.
struct OpenWorkbook
{
    const WorkbookFormat *format = nullptr; ///< the one that it was opened as
    // Destroyed in reverse order: the reader uses the source.
    std::unique_ptr<ByteSource> source;
    std::unique_ptr<sheet::WorkbookReader> reader;
};

/// Why a workbook is not open. Without a value, the file is missing or not accessible.
using WorkbookOpenError = std::optional<sheet::WorkbookError>;

/// Open `name` (expanded). The detail of a fault is the reason in words: what the file is and what
/// to do, or the reason of the system. NotAWorkbook also means a workbook of the other format.
Result<OpenWorkbook, WorkbookOpenError> openWorkbook(const ActionBase &action,
                                                     const WorkbookFormat &format,
                                                     const QString &name, InputFile::Report report);

/// Fail the run because the workbook `name` cannot be read. `reason` is logged after the message.
/// Returns false.
bool failWorkbook(ActionBase &action, const WorkbookFormat &format, const QString &name,
                  sheet::WorkbookError error, const QString &reason);

/// The words for a fault of an open workbook; `source` knows why the system refused a read.
QString describe(const Fault<sheet::WorkbookError> &fault, const ByteSource &source);

} // namespace corvanta
