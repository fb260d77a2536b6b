// --types: which types the columns of an input have.
//
// Files of texts do not say what their columns are. The reader finds out from the values, before
// the run, and the writer then writes numbers, dates and booleans as such.
#pragma once
#include "command_line.h"
#include "corvanta/action_parameters.h"

class ActionItem;

/// The value of --types.
struct ColumnTypes
{
    enum class Rule : quint8 {
        Auto,    ///< from the values
        Text,    ///< the columns of text formats are texts
        Letters, ///< K, F or U for each column
    };
    Rule rule = Rule::Auto;
    QString letters; ///< one per column
};

/// The value of the option, Auto without it. The fault is a usage error.
CommandResult<ColumnTypes> columnTypesOf(const CommandLine &line);

/// The kinds of the columns that `reader` gives, which reads the file `fileName`. Columns that are
/// not listed are what their cells are. May read the whole file. The fault is a usage error: the
/// letters do not fit the columns.
CommandResult<QVector<ColumnKind>> columnKindsOf(const ColumnTypes &types, const QString &fileName,
                                                 ActionParameters *reader,
                                                 ActionParameters::KindExtent extent);

/// Whether columnKindsOf() finds the kinds of this reader's columns in their values.
bool hasScannedKinds(const CommandLine &line, const ActionItem &reader);

/// Say that rows after a sample may decide otherwise, unless the file is too small to have any.
void noteSample(const CommandLine &line, const QString &fileName, const ActionItem &reader);

/// The kinds that a file of another format has: numbers of which a digit would be lost are texts.
/// They are numbers only where they are compared.
QVector<ColumnKind> losslessKinds(QVector<ColumnKind> kinds);

/// Whether input and output are JSON, and neither --types nor --writer says how values are written:
/// then each value is copied as it is, also in columns of numbers and texts.
bool copiesJson(const CommandLine &line, const ActionItem &reader, const ActionParameters &writer);

/// Whether an option of the command compares values.
bool comparesValues(const CommandLine &line);

/// The kinds of columns that are copied between JSON files: values of JSON (letter J), apart from
/// columns that an option of comparesValues() may name.
QVector<ColumnKind> jsonKinds(const CommandLine &line, QVector<ColumnKind> kinds);

/// Say that columns with numbers, dates or times are texts, because of other values or of too many
/// digits, and how to read numbers all the same: the order of texts and their cells in a workbook
/// differ from those of numbers and dates.
void noteValuesAmongTexts(const QString &fileName, const QVector<ColumnKind> &kinds);

/// Make the reader give numbers for the columns with the letters K and F. Returns the parameter
/// `types` of the action `cast` that must do it instead, in order; empty: none is needed.
QStringList castsFor(const QVector<ColumnKind> &kinds, ActionParameters *reader);
