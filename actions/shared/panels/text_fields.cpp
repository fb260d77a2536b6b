// The lists hold what most files have, the most frequent first; they are suggestions, so that no
// value that the action allows is missing. The values are those of the parameters, which the tables
// of the actions explain.
#include "actions/shared/panels/text_fields.h"

#include "panels/basic_editors.h"
#include "panels/column_picker.h"

#include <span>

using namespace Qt::StringLiterals;

namespace corvanta::shared {

namespace {

// "auto" is first, because only readers have it.
constexpr NamedValue kSeparators[] = {
    {"auto", QT_TRANSLATE_NOOP("Panels", "found in the file")},
    {",", QT_TRANSLATE_NOOP("Panels", "comma")},
    {";", QT_TRANSLATE_NOOP("Panels", "semicolon")},
    {"\\t", QT_TRANSLATE_NOOP("Panels", "tab")},
    {"|", QT_TRANSLATE_NOOP("Panels", "vertical bar")},
};

// UTF-8 and encodings with one byte per character come first, after "auto".
constexpr NamedValue kEncodings[] = {
    {"auto", QT_TRANSLATE_NOOP("Panels", "found in the file")},
    {"UTF-8", QT_TRANSLATE_NOOP("Panels", "all languages")},
    {"windows-1252", QT_TRANSLATE_NOOP("Panels", "Western Europe, Windows")},
    {"ISO-8859-1", QT_TRANSLATE_NOOP("Panels", "Western Europe, without the euro sign")},
    {"ISO-8859-15", QT_TRANSLATE_NOOP("Panels", "Western Europe, with the euro sign")},
    {"windows-1250", QT_TRANSLATE_NOOP("Panels", "Central Europe, Windows")},
    {"windows-1251", QT_TRANSLATE_NOOP("Panels", "Cyrillic, Windows")},
    {"UTF-16LE", QT_TRANSLATE_NOOP("Panels", "all languages, two bytes")},
    {"GB18030", QT_TRANSLATE_NOOP("Panels", "Chinese")},
    {"CP932", QT_TRANSLATE_NOOP("Panels", "Japanese, Windows")},
};
constexpr size_t kShortEncodings = 6;

// For files that may declare a wrong encoding: "UTF-8" trusts the file.
constexpr NamedValue kDeclaredEncodings[] = {
    {"UTF-8", QT_TRANSLATE_NOOP("Panels", "as the file declares")},
    kEncodings[2],
    kEncodings[3],
    kEncodings[4],
    kEncodings[5],
    kEncodings[6],
    kEncodings[8],
    kEncodings[9],
};

constexpr NamedValue kDecimalSigns[] = {
    {".", QT_TRANSLATE_NOOP("Panels", "point")},
    {",", QT_TRANSLATE_NOOP("Panels", "comma")},
};

constexpr NamedValue kQuotes[] = {
    {"\"", QT_TRANSLATE_NOOP("Panels", "double quote")},
    {"'", QT_TRANSLATE_NOOP("Panels", "single quote")},
};

// Choices: the action allows no other value.
constexpr NamedValue kRagged[] = {
    {"error", QT_TRANSLATE_NOOP("Panels", "the run fails")},
    {"fill", QT_TRANSLATE_NOOP("Panels", "fill short lines, cut long ones")},
};

constexpr NamedValue kReadLineEnds[] = {
    {"lf", QT_TRANSLATE_NOOP("Panels", "line feed (LF or CR LF)")},
    {"auto",
     QT_TRANSLATE_NOOP("Panels", "line feed, or carriage return in a file without line feeds")},
};

constexpr NamedValue kLineEnds[] = {
    {"lf", QT_TRANSLATE_NOOP("Panels", "line feed (LF)")},
    {"crlf", QT_TRANSLATE_NOOP("Panels", "carriage return and line feed (CR LF)")},
};

FieldEditor *suggest(const FieldContext &context, std::span<const NamedValue> values)
{
    return new SuggestionField(context, values);
}

} // namespace

FieldEditor *readSeparatorField(const FieldContext &context)
{
    return suggest(context, kSeparators);
}

FieldEditor *writeSeparatorField(const FieldContext &context)
{
    return suggest(context, std::span(kSeparators).subspan(1));
}

FieldEditor *foundEncodingField(const FieldContext &context)
{
    return suggest(context, kEncodings);
}

FieldEditor *encodingField(const FieldContext &context)
{
    return suggest(context, std::span(kEncodings).subspan(1));
}

FieldEditor *declaredEncodingField(const FieldContext &context)
{
    return suggest(context, kDeclaredEncodings);
}

FieldEditor *shortEncodingField(const FieldContext &context)
{
    return suggest(context, std::span(kEncodings).subspan(1, kShortEncodings));
}

FieldEditor *decimalSignField(const FieldContext &context)
{
    return suggest(context, kDecimalSigns);
}

FieldEditor *quoteField(const FieldContext &context)
{
    return suggest(context, kQuotes);
}

FieldEditor *raggedField(const FieldContext &context)
{
    return new ChoiceEditor(context, kRagged);
}

FieldEditor *readLineEndField(const FieldContext &context)
{
    return new ChoiceEditor(context, kReadLineEnds);
}

FieldEditor *typeLettersField(const FieldContext &context)
{
    return new LineEditor(context,
                          QCoreApplication::translate("Panels", "All texts; or K,F,U \u2026"));
}

FieldEditor *columnTypesField(const FieldContext &context)
{
    return new ColumnTextPicker(context, u"F"_s);
}

FieldEditor *columnKindsField(const FieldContext &context)
{
    return new ColumnTextPicker(context, u"decimal"_s);
}

FieldEditor *numberFormatsField(const FieldContext &context)
{
    return new ColumnTextPicker(context, u"#,##0.00"_s);
}

FieldEditor *dateFormatsField(const FieldContext &context)
{
    return new ListEditor(context, QCoreApplication::translate(
                                       "Panels", "Type a column and its format: day=dd.MM.yyyy"));
}

FieldEditor *newNamesField(const FieldContext &context)
{
    return new ColumnTextPicker(context, {});
}

FieldEditor *lineEndField(const FieldContext &context)
{
    return new ChoiceEditor(context, kLineEnds);
}

} // namespace corvanta::shared
