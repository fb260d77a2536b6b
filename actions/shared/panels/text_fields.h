// Fields that panels of several actions have: texts that most users choose from a list, and columns
// with texts. Any other text can still be typed, except for choices.
//
// Each function is a MakeEditor. Threads: the GUI thread.
#pragma once
#include "panels/field_editor.h"

namespace corvanta::shared {

/// The separator of a text file; for a reader also "auto".
FieldEditor *readSeparatorField(const FieldContext &context);
FieldEditor *writeSeparatorField(const FieldContext &context);
/// The name of an encoding. A reader of text files can also find it out ("auto").
FieldEditor *foundEncodingField(const FieldContext &context);
FieldEditor *encodingField(const FieldContext &context);
/// The encoding of a data set, which declares one itself.
FieldEditor *declaredEncodingField(const FieldContext &context);
/// The same with one byte per character, or UTF-8.
FieldEditor *shortEncodingField(const FieldContext &context);
/// The sign between the digits of a decimal number.
FieldEditor *decimalSignField(const FieldContext &context);
/// The sign around fields of a text file.
FieldEditor *quoteField(const FieldContext &context);
/// What happens to lines of another length.
FieldEditor *raggedField(const FieldContext &context);
/// One type for each column, as letters.
FieldEditor *typeLettersField(const FieldContext &context);
/// Columns with their types, their kinds, or their new names, which are typed in place.
FieldEditor *columnTypesField(const FieldContext &context);
FieldEditor *columnKindsField(const FieldContext &context);
FieldEditor *newNamesField(const FieldContext &context);
FieldEditor *numberFormatsField(const FieldContext &context);
/// Columns of a text file with formats, as texts: its columns are not known.
FieldEditor *dateFormatsField(const FieldContext &context);
/// The end of a line.
FieldEditor *readLineEndField(const FieldContext &context);
FieldEditor *lineEndField(const FieldContext &context);

} // namespace corvanta::shared
