// What a statistical data set says about its variables: names, labels, formats and value labels.
//
// Plain data, made by DataSetReader. Texts are decoded already.
#pragma once
#include <QByteArray>
#include <QString>

#include <memory>
#include <unordered_map>
#include <vector>

namespace corvanta::stat {

/// The file formats.
enum class Format : quint8 {
    Sas,         ///< .sas7bdat
    SpssSav,     ///< .sav and .zsav
    SpssPor,     ///< .por, the portable form
    Stata,       ///< .dta
    SasTransport ///< .xpt, versions 5 to 9
};

/// Whether the formats of its variables are those of SAS, and its value labels in a catalogue.
inline bool isOfSas(Format format)
{
    return format == Format::Sas || format == Format::SasTransport;
}

/// Labels of values that variables share. Keys are numbers, or bytes of texts without the blanks at
/// their end.
struct LabelSet
{
    /// A label of one value, in the order of the file.
    struct Entry
    {
        double number = 0;   ///< of a number that is not missing
        QByteArray text;     ///< of a text
        char tag = 0;        ///< of a tagged missing number; then `number` is not used
        bool isText = false; ///< whether `text` is used, or else `number` and `tag`
        QString label;
    };

    QString name;
    std::vector<Entry> entries;
};

/// How the number of a variable is shown as a date or time. The unit and epoch of the numbers
/// belong to it.
enum class DateKind : quint8 {
    None,
    SasDate,          ///< days since 1960-01-01; also Stata's %td
    SasDateTime,      ///< seconds since 1960-01-01
    SasDateOfSeconds, ///< seconds since 1960-01-01, of which the day is shown
    Time,             ///< seconds
    SpssDate,         ///< seconds since 1582-10-14, of which the day is shown
    SpssDateTime,     ///< seconds since 1582-10-14
    StataClock,       ///< %tc: milliseconds since 1960-01-01
    StataLeapClock,   ///< %tC: the same, with leap seconds
    StataWeek,        ///< %tw: weeks since 1960w1; 52 in each year
    StataMonth,       ///< %tm: months since 1960m1
    StataQuarter,     ///< %tq: quarters since 1960q1
    StataHalf,        ///< %th: half-years since 1960h1
    StataYear,        ///< %ty: the year
};

/// One variable of the file.
struct Variable
{
    QString name;
    QString label;  ///< empty: none
    QString format; ///< as the file names it, for example "DATE9" or "%tc"
    bool isText = false;
    bool isInteger = false; ///< stored in 8 to 32 bits; only Stata files have such variables
    DateKind date = DateKind::None;
    /// The name of its label set; empty: none. For SAS the format is that name, in a catalogue.
    QString labelSet;
};

/// Everything but the rows.
struct Dictionary
{
    std::vector<Variable> variables; ///< in file order; only the selected ones
    qint64 rows = -1;                ///< -1: not known before the rows are read
    QString encoding;                ///< iconv name of the encoding of the texts
};

/// Label sets by name.
using LabelSets = std::unordered_map<QString, LabelSet>;

} // namespace corvanta::stat
