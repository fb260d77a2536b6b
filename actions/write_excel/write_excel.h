// Writes the rows of its input pin into one worksheet of a new or an existing workbook.
#pragma once
#include "actions/shared/row_writer.h"
#include "actions/write_excel/write_excel_params.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/updated_workbook.h"
#include "io/package_file/package_file.h"

#include <memory>
#include <optional>

namespace corvanta {

extern const ActionEntry kWriteExcelEntry;

class ActionWriteExcel final : public ParamAction<ActionWriteExcel, WriteExcelParams, RowWriter>
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
        QString source; // the workbook that is read
        bool hasBegun = false;
        bool isTooLongKnown = false; // the warning about the number of rows is logged
        qint64 firstRow = 1;         // first sheet row written
        deflate::StreamOptions compression;
        std::unique_ptr<PackageInput> input; // of an update
        PackageOutput output;
        std::unique_ptr<opc::MemberWriter> members;
        std::unique_ptr<sheet::DateParser> dates;
        std::unique_ptr<xlsx::WorkbookTarget> workbook;
        std::unique_ptr<sheet::SheetWriter> sheet;
    };

    const RowWriterParams &rowParams() const override { return m_params; }
    const QString &fileParameter() const override { return m_params.fileNameDestination; }
    QString message(WriteProblem problem, const QString &name) const override;
    void start() override;
    bool begin(const OneRow &columns) override;
    bool beginWithoutRows(const OneRow &columns) override;
    bool writeRow(const OneRow &row) override;
    void complete() override;
    void release(bool wasComplete) override;

    bool setFloatFormat();
    bool setCompression();
    QString qtDateFormat() const;
    bool decideKind(const OneRow &row, sheet::Column *column);
    bool openSheet(std::vector<sheet::Column> columns);
    sheet::SheetOptions sheetOptions() const;
    bool checkSheet(const Result<void, sheet::Error> &result);
    bool completeWorkbook();
    xlsx::WorkbookEnd workbookEnd() const;
    void warnLongCell();

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
    bool isUpdate() const
    {
        return m_params.mode > WorkbookMode::Create &&
               m_params.mode <= WorkbookMode::CopyAndChangeSheet;
    }
    bool updatesInPlace() const
    {
        return m_params.mode == WorkbookMode::AddSheet ||
               m_params.mode == WorkbookMode::ChangeSheet;
    }
    /// The number by which the codec knows the format of date cells.
    int dateFormat() const { return static_cast<int>(m_params.dateFormatExcel); }
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
