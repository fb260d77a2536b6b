// Writes the rows of its input pin into one worksheet of a new or an existing workbook.
#pragma once
#include "actions/write_excel/write_excel_params.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/updated_workbook.h"
#include "corvanta/action_base.h"
#include "io/package_file/package_file.h"

#include <memory>
#include <optional>

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
    /// State of one run; recreated by start().
    struct RunState
    {
        QString file;   // the expanded destination
        QString source; // the workbook that is read
        bool isFirst = true;
        bool isComplete = false;     // all rows are written
        bool isTooLongKnown = false; // the warning about the number of rows is logged
        RowFilter filter;
        qint64 firstRow = 1; // first sheet row written
        deflate::StreamOptions compression;
        std::unique_ptr<PackageInput> input; // of an update
        PackageOutput output;
        std::unique_ptr<opc::MemberWriter> members;
        std::unique_ptr<sheet::DateParser> dates;
        std::unique_ptr<xlsx::WorkbookTarget> workbook;
        std::unique_ptr<sheet::SheetWriter> sheet;
    };

    void start() override;
    bool step() override;
    void finish() override;

    bool setFloatFormat();
    bool setCompression();
    QString qtDateFormat() const;
    bool begin(const OneRow *row);
    bool findTestColumn(const OneRow *row);
    bool findColumns(const OneRow *row, std::vector<sheet::Column> *columns);
    bool decideKind(const OneRow *row, sheet::Column *column);
    bool openSheet(std::vector<sheet::Column> columns);
    sheet::SheetOptions sheetOptions() const;
    bool writeRow(const OneRow *row);
    void endOfRows();
    bool checkSheet(const Result<void, sheet::Error> &result);
    bool failWrite();
    bool completeWorkbook();
    xlsx::WorkbookEnd workbookEnd() const;
    void warnLongCell();
    bool askRetry();

    // The workbook and the sheet to write to, in write_excel_target.cpp.
    bool openWorkbook();
    bool openOutput();
    bool openNewWorkbook();
    bool openUpdate();
    bool chooseSheet(xlsx::UpdatedWorkbook &workbook);
    bool chooseByNumber(xlsx::UpdatedWorkbook &workbook);
    bool chooseByName(xlsx::UpdatedWorkbook &workbook);
    bool changeSheet(xlsx::UpdatedWorkbook &workbook, qsizetype index);
    void addSheet(xlsx::UpdatedWorkbook &workbook);
    QString makeSheetName();
    void addCellFormats(xlsx::UpdatedWorkbook &workbook);
    bool failWorkbook(const Fault<opc::Error> &fault);

    // The replacement of the destination, in write_excel_target.cpp.
    bool updatesInPlace() const { return m_params.mode == 1 || m_params.mode == 2; }
    bool commit();
    void swapNothing();
    bool swap(const QString &temporary, const QString &target);
    bool pause(int pauseMs) const;
    void recalculate();

    FloatFormat m_floatFormat;
    CappedLog m_longCells;
    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
