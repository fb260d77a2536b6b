// sort: sorts the rows of a table of any size in bounded memory.
//
// The rows are packed into a RowSorter (io/rows), which keeps what does not fit in temporary files.
// The first row of the output is sent after the last one of the input.
#pragma once
#include "actions/shared/tables/row_transform.h"
#include "actions/sort/sort_params.h"
#include "io/rows/packed_row.h"
#include "io/rows/row_key.h"
#include "io/rows/row_sorter.h"

#include <memory>
#include <vector>

namespace corvanta {

extern const ActionEntry kSortEntry;

/// Threads: as ActionBase.
class ActionSort final : public ParamAction<ActionSort, SortParams, RowTransform>
{
public:
    ActionSort(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<SortParams> &paramTable() { return sortParamTable(); }
    QVector<ParameterProblem> problems() const override;

private:
    /// What the values of a key that is sorted as texts are: a user may expect numbers.
    struct TextKey
    {
        int column = 0;
        qint64 values = 0;
        qint64 numbers = 0;
        QString other = {};  ///< the first value that is not a number
        qint64 otherRow = 0; ///< its row
    };

    /// Everything of one run.
    struct RunState
    {
        /// `columns` are the types of all columns, `keys` those that are compared.
        RunState(rows::ColumnTypes columns, std::vector<rows::KeyColumn> keys, char decimalPoint,
                 rows::RowSorter::Options options)
            : types(std::move(columns))
            , encoder(std::move(keys), decimalPoint)
            , sorter(std::move(options))
            , cells(types.size())
        {
        }
        rows::ColumnTypes types;  // of all columns
        rows::KeyEncoder encoder; // makes bytes of a key that compare as its values
        std::vector<TextKey> textKeys;
        rows::RowSorter sorter;
        std::vector<const uchar *> cells; // of the row that is sent
    };

    // See RowTransform. Functions that return a bool return false after a failure.
    /// Find the keys and describe the output, which has the columns of the input.
    bool begin(const OneRow &columns) override;
    bool takeRow(const OneRow &row) override;
    bool endInput() override;
    bool emitRow() override;
    void finish() override { m_run.reset(); }
    /// The columns of the key, the most significant first; none after a failure.
    std::vector<rows::KeyColumn> findKeys(const TableSchema &columns);
    /// Count the value of a key that is compared as a text.
    void countNumbers(const OneRow &row, TextKey *key) const;
    /// Say which keys have numbers that were sorted as texts.
    void noteTextKeys();
    /// Declare the order of the output, as far as it is that of the cells.
    void declareOrder(const std::vector<rows::KeyColumn> &keys);

    std::unique_ptr<RunState> m_run; // from begin() to finish()
};

} // namespace corvanta
