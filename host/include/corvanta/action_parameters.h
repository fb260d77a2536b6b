// What a host can ask an action about its parameters, whatever the action is.
//
// Panels, `corvanta describe` and the options --reader and --writer use only this interface.
#pragma once
#include "corvanta/export.h"
#include "corvanta/file_format.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>
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
    /// What the host and its commands do with the parameter, apart from its value.
    enum class Role {
        None,
        SheetName,      ///< of the sheet in a new workbook; `convert` gives it that of the input
        AbortIfMissing, ///< a Flag: without it, a missing input file is only a warning
        RetryTime,      ///< other than 0: the action waits for a missing input file
        CreateFolder,   ///< a Flag: missing folders of the target are created
        CreateFile,     ///< a Flag: a missing target that is to be updated is created
    };

    QString name; ///< of the attribute or child element
    Type type = Type::Text;
    Place place = Place::Attribute;
    Role role = Role::None;
    QString defaultValue; ///< as it would be saved
    QString label;        ///< short, for forms
    QString meaning;      ///< one or two sentences
    /// Texts of the values 0, 1, 2, ... of an Integer; empty when it is a number.
    QStringList choices;
    /// One sentence about each of `choices`, or an empty text; none at all if no choice needs one.
    QStringList explanations;
    QString unit; ///< of a number, for forms: "MB", "seconds"; empty: none
    File file = File::None;
    bool saveAlways = false;
    bool isMultiLine = false; ///< a Text that may hold line feeds
    qint64 low = 0;           ///< smallest value of an Integer
    QString lowMeaning;       ///< what `low` means instead of an amount, "no limit"; empty: nothing
    qint64 high = 0;          ///< greatest value of an Integer
    /// A Text that is a whole number from `low` to `high` once its variables are replaced.
    bool isNumberText = false;
    /// Whether `${NAME}` in the value is replaced. File names are always expanded.
    bool isExpanded = false;
    /// The text of the action's own element, if there is one, is the value.
    bool isAlsoOwnText = false;
    /// What the action does with another value than those allowed. Empty: it uses the value that
    /// reading gives, such as the nearest bound.
    QString otherwise;
    /// Numbers without a choice are allowed too, and have the meaning `otherwise`.
    bool takesOtherNumbers = false;

    bool isRequired = false; ///< the value must not be empty when it is used

    /// A rule about another parameter of the same action.
    struct Condition
    {
        QString parameter;
        QStringList values;      ///< as saved
        bool isExcluded = false; ///< the other parameter must have none of `values`
        /// The rule also holds when one of these does.
        QVector<Condition> alternatives;
    };
    /// The action uses the value only when all of these hold; empty: always.
    QVector<Condition> conditions;

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
    /// For sheets of workbooks, which are listed without reading them.
    static constexpr qint64 kRowsNotKnown = -1;

    QString path; ///< of the table in the file; the name of a sheet
    qint64 rows = 0;
    qint64 columns = 0;
    QString beginning;     ///< of its first row, for people; of a sheet what is special about it
    bool isChosen = false; ///< the parameters read this table; true for at most one

    // Of relatedTables():
    QString name = {}; ///< distinct, for a file name
    int parent = -1;   ///< index of the table whose records contain those of this one; -1: none
    QString key = {};  ///< a column that may identify a record; empty: none
};

/// Something about the values of an action's parameters that the user should know before a run.
struct ParameterProblem
{
    /// With an error a run fails or writes something wrong; a warning is only a hint.
    enum class Severity { Error, Warning };

    QString parameter; ///< its name, for the line in the graph file; empty: the whole action
    QString text;      ///< begins in lower case, without a full stop, for example "'%x' is no ..."
    Severity severity = Severity::Error;
};

/// What the values of a column are. Booleans, dates and times are text cells.
enum class ValueKind : quint8 {
    Text,
    Integer,
    Decimal,
    Boolean,  ///< true, false
    Date,     ///< 2026-01-31
    DateTime, ///< 2026-01-31T04:30:05.25; some may have no time
    Time,     ///< 04:30:05.25; hours are not limited to a day
};

/// What all values of a column of an input have in common; missing values do not count.
struct ColumnKind
{
    QString column; ///< name, as in the output
    ValueKind kind = ValueKind::Text;
    /// Type of the cells that hold all values without loss: K, F or U.
    char letter = 'U';
    QString exception;      ///< the first value that made the column a text; empty: none
    QString exceptionPlace; ///< for people: "row 7"
    /// Of a column with an exception: what the values before it are.
    ValueKind before = ValueKind::Text;
    /// The values, or those before the exception, are times in UTC: their texts end with Z.
    bool isUtc = false;
};

/// "text", "integer", "datetime", ... as parameters and commands name it.
CORVANTA_EXPORT QString kindName(ValueKind kind);
/// The names of all kinds, in their order.
CORVANTA_EXPORT const QStringList &kindNames();
/// Whether the values are numbers.
constexpr bool isNumber(ValueKind kind)
{
    return kind == ValueKind::Integer || kind == ValueKind::Decimal;
}

/// The names of the columns of one kind, in order.
CORVANTA_EXPORT QStringList columnsOfKind(const QVector<ColumnKind> &columns, ValueKind kind);

/// What an input file says about one of its columns, apart from the type.
struct ColumnNotes
{
    struct ValueLabel
    {
        QString value; ///< a number has its fewest digits
        QString label;
    };

    QString column;                  ///< name, as in the output
    QString label;                   ///< a longer name; empty: none
    QString format;                  ///< how values are shown, as the file names it; empty: none
    QVector<ValueLabel> valueLabels; ///< in the order of the file
};

/// What an action does to a file that it writes. Known before a run from the parameters alone, so
/// that a graph whose actions would damage each other's files is rejected, and `corvanta check
/// --list-outputs` can print the files.
struct TargetUse
{
    enum class Access {
        Create, ///< The file gets a new content, whether or not it exists.
        Update, ///< The file is read, and replaced when its new content is complete.
        Append, ///< The file is extended in place.
    };

    QString name; ///< expanded: absolute, with the values of variables
    Access access = Access::Create;
    /// The files of a table that is split: each "*" in the last part of `name` matches any text.
    /// Otherwise a "*" is a character of the name.
    bool isPattern = false;
};

/// A place of an Office template that an action fills: a marker or a chart tag.
struct TemplateMark
{
    QString text;     ///< as a reader sees it, for example "%NAME%"
    QString location; ///< for people: "body", "header 1", "slide 3"
    QString part;     ///< the member of the package
    int count = 1;    ///< how often it is there
    int runs = 1;     ///< pieces that a word processor has made of it; only 1 is found in a run
    QString remedy;   ///< what to do so that a run finds it; empty if it does
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
    /// Number of the parameter with that role, which is not None; -1 when there is none.
    int indexOfParameter(ParameterInfo::Role role) const;
    /// The value as it would be saved; strings of a list are separated by line feeds, a structure
    /// is the XML of its elements.
    virtual QString parameterValue(int index) const = 0;
    /// Set a value from that form. Returns false, and changes nothing, when it is not of the
    /// parameter's type. Not during a run.
    virtual bool setParameterValue(int index, const QString &value) = 0;

    /// The first condition of the parameter that does not hold, so that the action ignores its
    /// value; null when the action uses it. Points into `info`.
    const ParameterInfo::Condition *failedCondition(const ParameterInfo &info) const;

    /// Read the beginning of the input file and set the parameters that depend on it and are not
    /// set yet, for example levels. `table` is an index in inputTables(); negative: the most likely
    /// one. Returns false after logging an error, for example when there is no such file or table.
    /// Not during a run.
    virtual bool fillFromInput(int table);
    /// The tables of the input file among which fillFromInput() can choose, in the file's order;
    /// empty when there is nothing to choose. Not during a run.
    virtual QVector<InputTable> inputTables();
    /// The tables of which the input file consists, each with the values of one repeated element
    /// only; a parent comes before its children. Empty when the format has only one table. Not
    /// during a run.
    virtual QVector<InputTable> relatedTables();
    /// Set the parameters that read table `table` of relatedTables(), with a column that joins it
    /// to its parent: the key of the parent if `areKeys[parent]`, else the number of the parent's
    /// record, which the parent then has too. Returns false after logging an error. Not during a
    /// run.
    virtual bool fillFromRelated(int table, const QVector<bool> &areKeys);
    /// The files that the action reads or writes; none by default.
    virtual std::span<const FileFormat> fileFormats() const;

    /// The files that a run with these parameters writes; none by default. A file whose name
    /// depends on the rows is a pattern, or missing if not even its folder is known.
    virtual QVector<TargetUse> targets() const;
    /// The expanded names and patterns of the files that a run reads, without those that come from
    /// input pins and those that targets() updates; none by default.
    virtual QStringList inputs() const;

    /// The marks of an Office template, in its order, that actions of this type can fill; none by
    /// default. Returns false after logging why the file cannot be read. `file` is expanded, or one
    /// of includedTemplates(). Not during a run.
    virtual bool templateMarks(const QString &file, QVector<TemplateMark> *marks);
    /// The Office templates that the program includes for actions of this type, sorted, as names
    /// for a parameter: ">bar.docx". None by default.
    virtual QStringList includedTemplates() const;

    /// How many rows columnKinds() examines.
    enum class KindExtent : quint8 {
        All,
        Sample, ///< at least the first 1,000
    };
    /// The kinds of columns of the first output; a column that is not listed is what the type of
    /// its cells says. None by default. Nothing if the input cannot be read, which a run reports.
    /// Logs nothing. Not during a run.
    virtual std::optional<QVector<ColumnKind>> columnKinds(KindExtent extent);
    /// Give the columns whose letter is K or F as numbers. Returns false, and changes nothing, when
    /// the action gives only texts; a host then adds an action that converts them.
    virtual bool readColumnsAs(const QVector<ColumnKind> &columns);
    /// Whether the action's files have types of columns and no parameter sets them yet. A host that
    /// knows those of the input then calls setColumnKinds() before the run.
    virtual bool needsColumnKinds() const;
    /// Write the columns as these kinds. Without effect for an action that needs none.
    virtual void setColumnKinds(const QVector<ColumnKind> &columns);

    /// What is wrong with the values together, or with a value in a way that the table cannot say,
    /// for example a date column without a date format. Mistakes that the table shows (types,
    /// ranges, required values) are found without this. The action has the graph's variables. May
    /// read the structure of a template, not rows. Logs nothing. Not during a run.
    virtual QVector<ParameterProblem> problems() const;
    /// What the input file says about each column of the first output; empty, or shorter than the
    /// columns are, where it says nothing. Logs nothing: the run reports what it cannot read. Not
    /// during a run.
    virtual QVector<ColumnNotes> columnNotes();
    /// Whether the action's files have labels of columns. A host that knows those of the input then
    /// calls setColumnLabels() before the run.
    virtual bool needsColumnLabels() const;
    /// Write the labels in these notes. Without effect for an action that needs none.
    virtual void setColumnLabels(const QVector<ColumnNotes> &notes);

    /// "text", "integer", ... as `describe` prints it.
    static QString typeName(ParameterInfo::Type type);
};
