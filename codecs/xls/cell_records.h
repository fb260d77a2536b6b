// Decodes the records of cells.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xls/globals.h"
#include "codecs/xls/shared_texts.h"

#include <string>
#include <vector>

namespace corvanta::xls {

/// The row of a cell record, from 0, or -1 for a record that has no cell with a value.
int rowOfCell(const Record &record);

/// One row while its cells are decoded. Threads: one at a time.
class RowCells
{
public:
    /// Begin a row without cells.
    void clear();
    /// Add a cell. The text of a cell without its own, such as a shared one, outlives the row.
    void add(const sheet::SheetCell &cell) { m_cells.push_back(cell); }
    /// Add a text cell whose text the caller has appended to ownText(), starting at `begin`.
    void addOwnText(int column, size_t begin);
    std::u16string &ownText() { return m_ownText; }

    /// Bring the cells into their order; of several in one column the last one stays. Counts those
    /// that it removes.
    void complete(Occurrences *repeated, qint64 row);
    std::span<const sheet::SheetCell> cells() const { return m_cells; }

private:
    /// A part of m_ownText. Positions, because the string moves while it grows.
    struct OwnText
    {
        size_t cell = 0;  ///< index in m_cells
        size_t begin = 0; ///< first unit
        size_t units = 0; ///< length
    };
    /// Point the cells at their own texts. Only when the row is complete: m_ownText does not move
    /// any more then, but the cells are still in the order in which they were added.
    void setOwnTexts();
    /// After sorting: keep the last cell of each column.
    void removeRepeated(Occurrences *repeated, qint64 row);

    std::vector<sheet::SheetCell> m_cells;
    std::u16string m_ownText; // of all cells that have one
    std::vector<OwnText> m_ownTexts;
};

/// Decodes cells of one sheet. What it refers to must outlive it. Threads: one at a time.
class CellDecoder
{
public:
    CellDecoder(RecordReader &reader, const TextReader &rules, const CellForms &forms,
                const SharedTexts &shared, sheet::SheetProblems &problems)
        : m_reader(reader)
        , m_rules(rules)
        , m_forms(forms)
        , m_shared(shared)
        , m_problems(problems)
    {
    }

    /// Note the number of the XF record that the next BIFF 2 cell uses, from an IXFE record.
    void takeIxfe(const Record &record);
    /// Add the cells of a record, for which rowOfCell() is not negative. Reads the text of a
    /// formula's result from the records after it.
    void decode(const Record &record, RowCells *row);

private:
    // Each adds the cells of one kind of record. `header` is the number of bytes before the
    // content: one more in BIFF 2. What is repaired is counted in m_problems.

    void decodeOld(const Record &record, RowCells *row);
    void decodeMulRk(const Record &record, RowCells *row);
    void decodeFormula(const Record &record, qint64 header, sheet::NumberForm form, RowCells *row);
    /// `lengthBytes`: width of the length before the characters, 1 or 2.
    void decodeText(const Record &record, qint64 header, qint64 lengthBytes, RowCells *row);
    void decodeShared(const Record &record, RowCells *row);
    void decodeBoolErr(const Record &record, qint64 header, RowCells *row);
    /// Add the text of an error code; #ERROR! for a code that has none.
    void addError(int row0, int column, quint8 code, RowCells *row);
    void addResultText(int row0, int column, RowCells *row);
    /// Read the STRING record of a formula. Returns false, and stays before the next cell, without
    /// one.
    bool seekResultText(Record *record);
    void addNumber(int column, double value, sheet::NumberForm form, RowCells *row);
    /// A boolean is a number too: 1 for true, 0 for false.
    void addBoolean(int column, bool value, RowCells *row);
    /// General for a number without XF record.
    sheet::NumberForm formOfXf(size_t xf) const;
    /// The form that the three bytes of a BIFF 2 cell give.
    sheet::NumberForm formOfOld(const Record &record);
    void count(sheet::SheetProblem problem, int row, int column);

    RecordReader &m_reader;
    const TextReader &m_rules;
    const CellForms &m_forms;
    const SharedTexts &m_shared;
    sheet::SheetProblems &m_problems;
    int m_ixfe = 0; // number of the XF record of cells that give none, BIFF 2
};

} // namespace corvanta::xls
