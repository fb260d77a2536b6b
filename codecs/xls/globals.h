// Reads what a legacy workbook says about all of its sheets.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xls/record_text.h"

#include <vector>

namespace corvanta::xls {

/// A sheet and where its stream begins.
struct SheetPlace
{
    sheet::SheetInfo info;
    qint64 offset = 0; ///< of its BOF record; not checked yet
};

/// How the numbers of cells are shown.
struct CellForms
{
    std::vector<sheet::NumberForm> ofXf;     ///< by the number of a cell's XF record
    std::vector<sheet::NumberForm> ofFormat; ///< by the number of a format; BIFF 2 without XF only
};

/// What is known about a workbook before any sheet is read.
struct Globals
{
    Biff biff = Biff::V8;
    int codePage = 0;
    bool uses1904 = false;
    bool isWorkspace = false; ///< BIFF 4 with several sheets, each with formats of its own
    std::vector<SheetPlace> sheets;
    CellForms forms;
    std::vector<sheet::DefinedName> names;
    qint64 sharedTexts = -1; ///< offset of the SST record; -1: none
};

/// The version that a BOF record names. `record` is one.
Biff versionOf(const Record &record);
/// The type of the stream that a BOF record begins; see StreamType.
quint16 streamType(const Record &record);

/// The fault of a read that the source refused.
Fault<sheet::WorkbookError> readFailed(qint64 offset);

/// Read the stream that begins at `offset`, up to its end: the globals of BIFF 5 and 8, or the only
/// sheet of an older file, whose cells are skipped. Errors: NotAWorkbook without a BOF record,
/// Encrypted, ReadFailed, Damaged if globals have no end.
sheet::WorkbookResult<Globals> readGlobals(RecordReader &reader, qint64 offset);

} // namespace corvanta::xls
