// writers/write_excel.h
// writeExcel: rows into one worksheet of a workbook.
#pragma once
#include "actions/write_excel/sheet_writer.h"
#include "actions/write_excel/workbook_update.h"
#include "actions/write_excel/write_excel_params.h"
#include "codecs/sheet/cell_text.h"
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
    /// State of one run; made anew by start().
    struct RunState
    {
        QString file;   // the expanded destination
        QString source; // the workbook that is read
        bool isFirst = true;
        bool isComplete = false; // all rows are written
        bool isTooLong = false;  // a row lies beyond the last one of a sheet, and that was said
        RowFilter filter;
        qint64 firstRow = 1; // first sheet row written
        QString sheetName;
        deflate::StreamOptions compression;
        PackageOutput output;
        std::unique_ptr<sheet::DateParser> dates;
        std::unique_ptr<WorkbookUpdate> update; // null: a new workbook
        std::unique_ptr<SheetWriter> sheet;
    };

    void start() override;
    bool step() override;
    void finish() override;

    bool begin(const OneRow *row);
    bool findTestColumn(const OneRow *row);
    bool findColumns(const OneRow *row, std::vector<SheetWriter::Column> *columns);
    bool decideKind(const OneRow *row, SheetWriter::Column *column);
    bool openOutput();
    bool openNewWorkbook(std::vector<SheetWriter::Column> columns);
    void makeSheetWriter(std::vector<SheetWriter::Column> columns, const SheetOptions &options);
    SheetOptions sheetOptions() const;
    bool writeMember(const char *name, const QByteArray &content);
    bool writeRow(const OneRow *row);
    void endOfRows();
    bool isWritten(SheetWriter::Error error);
    bool finishSheet();
    bool finishWorkbook();
    std::optional<sheet::NamedRange> namedRange() const;
    QString makeSheetName();
    QString qtDateFormat() const;
    void warnLongCell();
    bool askRetry();
    template <class F> bool packageCall(F call);

    // Modes 1 to 4, in write_excel_update.cpp.
    bool updatesInPlace() const { return m_params.mode == 1 || m_params.mode == 2; }
    bool openWorkbook(std::vector<SheetWriter::Column> columns);
    bool openUpdate(const QString &source, std::vector<SheetWriter::Column> columns);
    bool chooseSheet();
    bool chooseByNumber();
    bool chooseByName();
    void addSheet();
    void addStyles(SheetOptions *options);
    bool failUpdate(const Fault<WorkbookUpdate::Problem> &fault);
    bool finishUpdatedWorkbook();
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
