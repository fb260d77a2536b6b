#include "actions/write_json/write_json_params.h"

#include "codecs/compose/json_levels.h"

using namespace Qt::StringLiterals;

// The lines are in the order of saved graphs.
namespace corvanta {

namespace {

using P = WriteJsonParams;

const WriteLevelTables &levelTables()
{
    using compose::JsonItem;
    static const WriteLevelTables tables{
        std::initializer_list<Choice<JsonItem>>{
            {JsonItem::Text, "A simple text", "Writes the text as it is."},
            {JsonItem::Dictionary, "A dictionary containing all columns",
             "Writes \"name\":value for every column of the input, without braces."},
            {JsonItem::SomeDictionary, "A dictionary containing some user-selected columns",
             "Writes \"name\":value for the chosen columns, without braces."},
            {JsonItem::Array, "An array containing all columns",
             "Writes the values of all columns with commas between them, without brackets."},
            {JsonItem::SomeArray, "An array containing some user-selected columns",
             "Writes the values of the chosen columns with commas between them, without brackets."},
            {JsonItem::SubLevel, "An array containing some sub-level",
             "Writes the elements of another level, without brackets."},
            {JsonItem::Comma, "Adds a comma if the previous dictionary is non empty",
             "Writes a comma when the item before it, a dictionary, has written something."},
            {JsonItem::AsIs, "One pre-formated column \"as-is\"",
             "Writes the text of the first chosen column without quotes and escapes."},
        },
        {{u"0"_s}, {u"5"_s}, {u"2"_s}, {u"2"_s, u"4"_s, u"7"_s}}};
    return tables;
}

/// The form of texts. The last two are off by default: control characters then stay unchanged, and
/// the file is valid JSON only if no text contains one. escapeControls includes replaceLF.
ParamGroup<P> textForms()
{
    return {
        flag("specialBool", &P::specialBool)
            .label("The texts true and false are booleans")
            .meaning("Writes the texts true, True, false and False as booleans. Default off in "
                     "graphs saved before version 2.79."),
        flag("replaceLF", &P::replaceLF)
            .ignoredWhen("escapeControls", {QStringLiteral("1")})
            .label("Line feeds become \\n")
            .meaning("Writes line feeds in texts as \\n. Off: they stay unchanged, which strict "
                     "parsers reject."),
        flag("escapeControls", &P::escapeControls)
            .label("Control characters become escapes")
            .meaning("Writes all control characters in texts and names as escapes, so that the "
                     "file is valid JSON for all cells. Off: they stay unchanged."),
    };
}

/// The files that a table is split into; splitCol is saved after them.
ParamGroup<P> splitting()
{
    return {
        flag("splitFile", &P::splitFile)
            .label("One file per value of the split column")
            .meaning("Writes one file per value of splitCol; the value is put into the file name "
                     "before the extension."),
        flag("advancedNaming", &P::advancedNaming)
            .onlyWhen("splitFile", {QStringLiteral("1")})
            .label("Put the value at each * of the file name")
            .meaning("The value replaces each * in the file name. Without a * it is put before the "
                     "extension, or becomes the extension of a name that has none."),
    };
}

} // namespace

void adjustWriteJsonDefaults(WriteJsonParams &params, double savedVersion)
{
    // Earlier graphs rely on the texts true and false being written with quotes.
    constexpr double kBooleansSince = 2.79;
    params.specialBool = savedVersion >= kBooleansSince;
}

const ParamTable<WriteJsonParams> &writeJsonParamTable()
{
    static const ParamTable<P> table{
        text<P>("fileName", &P::fileName)
            .outputFile()
            .required()
            .label("File")
            .meaning("JSON file to write, UTF-8."),
        shared::fileMode<P>(),
        shared::checkNameCollision<P>(),
        shared::createDir<P>(),
        shared::rowFilter<P>(),
        shared::valueForms<P>("write null", "write \"\""),
        textForms(),
        splitting(),
        shared::alwaysWrite<P>(),
        text("splitCol", &P::splitCol)
            .requiredWhen("splitFile", {QStringLiteral("1")})
            .label("Split column")
            .meaning("Column whose values split the table, which should be sorted on it."),
        shared::lockTimeOut<P>(),
        // Child elements come after all attributes.
        shared::fileContent<P>(levelTables()),
        strings(kBare, &P::bareColumns)
            .label("Columns without quotes")
            .meaning("Text columns whose numbers, and the words true and false in any letter case, "
                     "are written without quotes. Texts that are not numbers of JSON, such as 007, "
                     "keep them."),
        strings(kJsonTexts, &P::jsonColumns)
            .label("Columns of JSON texts")
            .meaning("Text columns that hold values of JSON, such as those that readJSON reads "
                     "with the type J. They are written unchanged, without a check."),
    };
    return table;
}

} // namespace corvanta
