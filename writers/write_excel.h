// writers/write_excel.h
// writeExcel: rows into one worksheet of a workbook.
#pragma once
#include "codecs/sheet/cell_text.h"
#include "corvanta/action_base.h"
#include "corvanta/target_file.h"
#include "io/package/package_writer.h"
#include "writers/sheet_writer.h"
#include "writers/write_excel_params.h"

#include <memory>

namespace corvanta {

class ActionWriteExcel final : public ParamAction<ActionWriteExcel, WriteExcelParams>
{
public:
    ActionWriteExcel(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteExcelParams> &paramTable() { return writeExcelParamTable(); }
    static void adjustDefaults(WriteExcelParams &params, double savedVersion)
    {
        adjustWriteExcelDefaults(params, savedVersion);
    }

private:
    /// State of one run; made anew by start().
    struct RunState
    {
        QString file; // the expanded destination
        bool isFirst = true;
        bool isComplete = false; // all rows are written
        int testColumn = -1;
        qint64 firstRow = 1; // first sheet row written
        QString sheetName;
        TargetFile target;
        std::unique_ptr<sheet::DateParser> dates;
        std::unique_ptr<package::PackageWriter> package;
        std::unique_ptr<SheetWriter> sheet;
    };

    void start() override;
    bool step() override;
    void finish() override;

    bool begin(const OneRow *row);
    bool findTestColumn(const OneRow *row);
    bool findColumns(const OneRow *row, std::vector<SheetWriter::Column> *columns);
    bool decideKind(const OneRow *row, SheetWriter::Column *column);
    bool openNewWorkbook(std::vector<SheetWriter::Column> columns);
    bool writeMember(const char *name, const QByteArray &content);
    bool isWanted(const OneRow *row) const;
    bool writeRow(const OneRow *row);
    bool failOn(SheetWriter::Error error);
    bool finishNewWorkbook();
    QString makeSheetName();
    QString qtDateFormat() const;
    void warnLongCell();
    bool askRetry();
    template <class F> bool packageCall(F call);

    FloatFormat m_floatFormat;
    CappedLog m_longCells;
    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
