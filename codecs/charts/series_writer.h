// Writes a chart part in which the data of marked series is replaced by literal values.
//
// All other bytes of the part stay as they are. The part is written in blocks, because the data of
// one series can be larger than the rest of the document.
#pragma once
#include "base/result.h"
#include "codecs/charts/chart_tags.h"
#include "codecs/charts/value_list.h"

#include <array>
#include <functional>
#include <string_view>

namespace corvanta::charts {

/// Whether a chart can have this text as a number: an optional sign, digits with at most one
/// decimal point, an optional exponent (XML Schema part 2, 3.2.5), within the range of a double.
bool isNumberText(std::string_view text);

/// How many values something happened to, and the first of them.
struct ValueCount
{
    qint64 count = 0;
    qint64 firstIndex = 0; ///< from 0
    void add(qint64 index)
    {
        firstIndex = count == 0 ? index : firstIndex;
        ++count;
    }
};

/// What of the data is not in the chart.
struct SeriesReport
{
    /// Indexes without a point because one of the axes has no text there, although another has.
    ValueCount gaps;
    /// By axis: texts of a numeric axis that are not numbers and are written as 0.
    std::array<ValueCount, kMaxAxes> notNumbers;
};

/// The values of a series by axis, see axisElements(). Null: the axis keeps the template's content.
/// Those of an axis that the series lacks are not written, but their gaps count.
using SeriesValues = std::array<const ValueList *, kMaxAxes>;

/// Call series() for tags in document order, then finish(). After a fault the part cannot be
/// completed. Threads: one at a time.
class SeriesWriter
{
public:
    /// Takes a block of the part; its fault ends the writing.
    using Put = std::function<Result<void, opc::Error>(QByteArrayView block)>;

    /// `part` must outlive the writer.
    SeriesWriter(QByteArrayView part, Put put);

    /// Write the part up to the end of a tag's axes. The tag's use is Series; its texts must have
    /// no forbidden character in axes of texts. Errors: those of `put`.
    Result<SeriesReport, opc::Error> series(const ChartTag &tag, const SeriesValues &values);
    /// Write the part up to a tag that is not Split, and the tag's reference in its place. A name
    /// that refers to a cell becomes a text as a whole, with all tags in it. Call it before
    /// series() for the same tag. Errors: those of `put`.
    Result<void, opc::Error> replaceTag(const ChartTag &tag);
    /// Write the rest. Errors: those of `put`.
    Result<void, opc::Error> finish();

private:
    /// Copy the part from what is written to an offset.
    void copyTo(qsizetype offset);
    void axis(const AxisPlace &place, const SeriesValues &values, ValueCount *notNumbers);
    /// Write up to the beginning of the first point.
    void openAxis(const AxisPlace &place, qint64 count);
    void closeAxis(const AxisPlace &place);
    void point(qint64 index, std::string_view value);
    /// The same for a value, or markup, that may not fit into a block.
    void longPoint(qint64 index, std::string_view value);
    void text(QByteArrayView bytes);
    void escaped(std::string_view value);
    /// Room for at most 32 KiB in the block; null after a fault.
    char *room(size_t bytes);
    /// Pass the block on, if there is something in it.
    void flush();
    Result<void, opc::Error> done() const;

    QByteArrayView m_part;
    Put m_put;
    qsizetype m_copied = 0; // bytes of the part that are written or replaced
    std::vector<char> m_block;
    size_t m_used = 0; // bytes of m_block
    // Markup of the current axis, with its prefix.
    QByteArray m_literal;
    QByteArray m_pointOpen;
    QByteArray m_pointMiddle;
    QByteArray m_pointClose;
    size_t m_pointBytes = 0; // of a point without its value, at most
    std::optional<Fault<opc::Error>> m_fault;
};

} // namespace corvanta::charts
