// What a host can ask an action about its parameters, whatever the action is.
//
// Panels, `corvanta describe` and the options --reader and --writer use only this interface.
#pragma once
#include "corvanta/export.h"
#include "corvanta/file_format.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <span>

/// One parameter, as the action declares it.
struct ParameterInfo
{
    /// Strings is a list of texts, Structure a list of child elements with members.
    enum class Type { Text, Integer, Real, Flag, Strings, Structure };
    /// Whether a Text names a file, which is then saved relative to the graph's folder.
    enum class File { None, Input, Output };
    /// Where the value is in the saved form: an attribute, a child element, or the content of the
    /// element itself.
    enum class Place { Attribute, Element, Content };

    QString name; ///< of the attribute or child element
    Type type = Type::Text;
    Place place = Place::Attribute;
    QString defaultValue; ///< as it would be saved
    QString label;        ///< short, for forms
    QString meaning;      ///< one or two sentences
    /// Texts of the values 0, 1, 2, ... of an Integer; empty when it is a number.
    QStringList choices;
    File file = File::None;
    bool saveAlways = false;
    bool isMultiLine = false; ///< a Text that may hold line feeds
    qint64 low = 0;           ///< smallest value of an Integer
    qint64 high = 0;          ///< greatest value of an Integer

    // Of a Structure, which is a list of child elements:
    QString itemElement; ///< name of each element; if it is not `name`, then inside `name`
    QVector<ParameterInfo> members; ///< what each element holds
    /// Without such an element, the element that should contain it is itself the only item.
    bool hasInlineForm = false;
};

/// Names that an element may have inside.
struct KnownNames
{
    QStringList attributes;
    QStringList elements;
};
/// The names that the saved form of these parameters, or of these members, uses, for example to
/// report misspelled ones. Every saved action also has the attribute `version`.
CORVANTA_EXPORT KnownNames knownNames(const QVector<ParameterInfo> &infos);

/// One of the tables that an input file offers.
struct InputTable
{
    QString path; ///< of the table in the file
    qint64 rows = 0;
    qint64 columns = 0;
    QString beginning;     ///< of its first row, for people
    bool isChosen = false; ///< the parameters read this table; true for at most one
};

/// The longest text of a column.
struct TextLength
{
    QString column;
    qsizetype bytes = 0; ///< of UTF-8
};

/// Implemented by actions whose parameters are declared in a table. Threads: the owner's.
class CORVANTA_EXPORT ActionParameters
{
public:
    virtual ~ActionParameters();
    /// All parameters in saved order; the index of a parameter below counts in this list, from 0.
    virtual QVector<ParameterInfo> parameters() const = 0;
    /// Number of the parameter with that name (exact); -1 when there is none.
    int indexOfParameter(const QString &name) const;
    /// The value as it would be saved; strings of a list are separated by line feeds, a structure
    /// is the XML of its elements.
    virtual QString parameterValue(int index) const = 0;
    /// Set a value from that form. Returns false, and changes nothing, when it is not of the
    /// parameter's type. Not during a run.
    virtual bool setParameterValue(int index, const QString &value) = 0;

    /// Read the beginning of the input file and set the parameters that depend on it and are not
    /// set yet, for example levels. `table` is an index in inputTables(); negative: the most likely
    /// one. Returns false after logging an error, for example when there is no such file or table.
    /// Not during a run.
    virtual bool fillFromInput(int table);
    /// The tables of the input file among which fillFromInput() can choose, in the file's order;
    /// empty when there is nothing to choose. Not during a run.
    virtual QVector<InputTable> inputTables();
    /// The files that the action reads or writes; none by default.
    virtual std::span<const FileFormat> fileFormats() const;

    /// Whether the action stores texts in fixed widths and no width is declared yet. A host that
    /// can read the input twice then measures its texts and calls setTextLengths() before the run.
    virtual bool needsTextLengths() const;
    /// Declare the width of every text column. Without effect for an action that needs none.
    virtual void setTextLengths(const QVector<TextLength> &longest);

    /// "text", "integer", ... as `describe` prints it.
    static QString typeName(ParameterInfo::Type type);
};
