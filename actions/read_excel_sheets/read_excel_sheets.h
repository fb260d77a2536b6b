// readExcelSheets: lists the sheet names of workbooks, one row per sheet.
#pragma once
#include "actions/read_excel_sheets/read_excel_sheets_params.h"
#include "corvanta/action_base.h"

#include <atomic>
#include <optional>

namespace corvanta {

extern const ActionEntry kReadExcelSheetsEntry;

/// Threads: the one that runs the action; computeCompletion() from any.
class ActionReadExcelSheets final : public ParamAction<ActionReadExcelSheets, ReadExcelSheetsParams>
{
public:
    ActionReadExcelSheets(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelSheetsParams> &paramTable()
    {
        return readExcelSheetsParamTable();
    }
    /// Pin 0 brings the file name.
    static int pinsInFor(const ReadExcelSheetsParams &params)
    {
        return params.fileNameFromPin ? 1 : 0;
    }
    /// Fraction of the files that is listed, 0 to 1.
    float computeCompletion() override { return m_fraction.load(std::memory_order_relaxed); }
    /// Without a name from the pin, the files of the pattern.
    QStringList inputs() const override;

private:
    /// Of a run; reset by start().
    struct Progress
    {
        QStringList files = {};
        qsizetype file = -1;    ///< index of the current one; -1 before the first
        QStringList names = {}; ///< of its sheets
        qsizetype name = 0;     ///< index of the next one
        bool hasBegun = false;
    };

    void start() override;
    bool step() override;
    bool begin();
    bool openNext();
    void warnSkipped();
    void putRow();
    void updateFraction();

    Progress m_run;
    std::atomic<float> m_fraction = 0;
};

} // namespace corvanta
