// The parameters of ReadXBF.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Encoding of texts in a table. Any other number keeps the bytes as they are.
enum class XbfEncoding { Windows1252, System, Utf8 };

struct ReadXbfParams
{
    /// A file or a pattern. Not expanded yet. Several tables must have the same columns.
    QString fileName;
    /// Size of one read of the file, in MiB; more than 64 means 64.
    int bufferSize = 1;
    /// Of character and memo fields, and of the names of columns.
    XbfEncoding encoding = XbfEncoding::Windows1252;
    /// Use the encoding that the table names, if `encoding` is Windows1252.
    bool declaredEncoding = false;
    /// Read memo fields from the memo file. Off: their cells are missing.
    bool useDBT = true;
    /// Load the whole memo file. Packed memo files are always loaded.
    bool dbtInRam = false;
    /// Field descriptors have the longer form of dBase 7, unless only the other one is valid.
    bool level7 = false;
    /// Read amounts of currency, use the null flags and varying texts of Visual FoxPro, and leave
    /// out objects and pictures. Off: tables with currency, objects or pictures are rejected.
    bool readAllTypes = false;
    /// Dates and times in the form of ISO 8601, and the texts true and false for logical values.
    bool isoValues = false;
    /// Letters of the types of the columns, separated by commas: text columns with K or F are
    /// numbers.
    QString types;
    /// Add the last column _FileNames.
    bool outputFilenames = false;
};

/// Constant; made by the first call.
const ParamTable<ReadXbfParams> &readXbfParamTable();

} // namespace corvanta
