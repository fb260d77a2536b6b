// Reads several files as one table: the part that the file readers share.
//
// A reader says how to open one name (FileSeries::Format), and its open file gives columns and rows
// (SeriesFile). FileSeries does the rest: the list of names, retries, missing files, comparing the
// columns of each file with those of the first, the column with the file's name, progress, and
// stopping.
//
//     start(): m_series.reset();
//     step():  if (!m_series.hasBegun()) {
//                  m_series.start(*this, namesOfPattern(*this, m_params.fileName), options);
//                  if (!m_series.openNext()) { return false; }
//              }
//              return m_series.step();
#pragma once
#include "base/result.h"
#include "corvanta/action_base.h"

#include <QStringList>

#include <memory>
#include <mutex>
#include <optional>

namespace corvanta {

/// One open file of a series. It refers to its action and is destroyed before the action's
/// finish() has ended.
///
/// Threads: the one that runs the action; fractionDone() and stop() from any.
class SeriesFile
{
public:
    enum class Found : quint8 {
        Row,
        Nothing, ///< no row this time (a deleted record): a chance to yield
        End,
    };

    SeriesFile() = default;
    SeriesFile(const SeriesFile &) = delete;
    SeriesFile &operator=(const SeriesFile &) = delete;
    virtual ~SeriesFile() = default;

    /// Names and types. Not called with Options::columns.
    virtual TableSchema columns() const { return {}; }

    /// Go to the next row and put its cells into `row`, the row of output pin 0: one per column,
    /// the column with the file's name excepted. The cells must stay valid until the next call.
    /// Returns false when the run has failed (the file has reported why) or ended.
    virtual bool next(OneRow &row, Found *found) = 0;

    /// Called after End: last warnings and checks. Returns false when the run has failed.
    virtual bool finish() { return true; }

    /// Called before the file is closed, also when the run ends early or has failed: what has been
    /// counted so far is reported here.
    virtual void beforeClose() {}

    /// Fraction delivered, 0 to 1.
    virtual float fractionDone() const = 0;

    /// End every wait in next() soon. The run has ended.
    virtual void stop() {}
};

/// What differs between a file and the first one.
struct ColumnMismatch
{
    enum class Kind : quint8 { Count, Name, Type };
    Kind kind = Kind::Count;
    QString file = {};
    qsizetype column = 0; ///< index from 0; not for Count
    QString name = {};    ///< of that column in `file`; not for Count
    QString first = {};   ///< count, name, or letter of the type in the first file
    QString found = {};   ///< the same in `file`
};

/// The message of readers whose columns must be equal in all files; columns count from 1 in it. The
/// texts are fixed. `format` as in "The DBF file", `action` as in "the 'ReadXBF' Action".
QString textOf(const ColumnMismatch &mismatch, const QString &format, const QString &action);

/// Threads: the one that runs the action; fractionDone() and stop() from any, at any time.
class FileSeries
{
public:
    enum class OpenError : quint8 {
        Missing,    ///< retried, see Options::retries
        Unreadable, ///< the file exists
        Failed,     ///< the run has failed; the format has reported why
    };
    /// The detail of a fault is the reason in words. The series logs it after the message.
    using Opened = Result<std::unique_ptr<SeriesFile>, OpenError>;

    /// What a reader defines: how a file is opened, and the messages. The functions that report
    /// return true to continue with the next file, false when they failed the run. None of them is
    /// called after the run has ended.
    class Format
    {
    public:
        /// Open a file. Must return soon after the run has ended (see RunInput).
        virtual Opened openFile(const QString &name) = 0;
        virtual bool reportMissing(const QString &name) = 0;
        virtual bool reportUnreadable(const QString &name) = 0;
        /// A file has other columns than the first one: fail the run.
        virtual bool reportMismatch(const ColumnMismatch &mismatch) = 0;

    protected:
        ~Format() = default;
    };

    /// Which columns are compared first when several differ.
    enum class Order : quint8 { FirstToLast, LastToFirst };

    struct Options
    {
        QString fileNameColumn = {}; ///< a last column with the file's name; empty: none
        int retries = 0;             ///< of a missing file, one second apart; negative: no limit
        Order order = Order::FirstToLast;
        /// The columns of every file, if known before the first file is open. Otherwise they are
        /// those of the first file, and all files must have the same.
        std::optional<TableSchema> columns = {};
    };

    /// `action` owns the series.
    explicit FileSeries(ActionBase &action)
        : m_action(action)
    {
    }

    /// Forget an earlier run.
    void reset();

    /// Begin a run over `files` (expanded names). With Options::columns, describe them on output
    /// pin 0. `format` must outlive the run.
    void start(Format &format, const QStringList &files, Options options);

    /// Close the file and open the next one that can be read. The first one describes the columns
    /// on output pin 0. Returns false after the last file, after a failure, or when the run has
    /// ended.
    bool openNext();

    /// One call of the run function: see ActionBase::step(). After openNext().
    bool step();

    /// Close the open file. May be called without start(), and twice.
    void finish();

    /// True while the format opens a missing file again: what it has reported then, it need not
    /// repeat.
    bool isRetrying() const { return m_isRetrying; }
    /// True after the first openNext().
    bool hasBegun() const { return m_nextFile > 0; }
    /// True once the columns are known: with or without a file.
    bool hasColumns() const { return m_hasColumns; }
    /// Columns of the output pin; 0 while they are not known.
    int columnCount() const { return m_columnCount; }

    /// Fraction of all files, 0 to 1. `withoutFile`, if given, is returned while no file is open.
    float fractionDone(std::optional<float> withoutFile = {});

    /// End every wait of the open file. The run has ended.
    void stop();

private:
    Opened openWithRetries(const QString &name);
    bool handle(const Fault<OpenError> &fault, const QString &name);
    bool report(OpenError error, const QString &name);
    void use(std::unique_ptr<SeriesFile> file, const QString &name);
    void setCurrent(std::unique_ptr<SeriesFile> file);
    void closeCurrent();
    void describeColumns(const TableSchema &columns);
    bool checkColumns(const QString &name);
    std::optional<ColumnMismatch> findMismatch(const TableSchema &columns) const;
    std::optional<ColumnMismatch> compareColumn(const TableSchema &columns, qsizetype column) const;
    void putRow(OneRow &row);
    bool finishFile();

    ActionBase &m_action;
    Format *m_format = nullptr;
    Options m_options;
    QStringList m_files;
    qsizetype m_nextFile = 0;
    bool m_isRetrying = false;
    bool m_hasColumns = false;
    TableSchema m_columns; // of the first file
    int m_columnCount = 0;
    int m_fileNameColumn = -1;
    RowBuffer m_fileNameBuffer{0};
    const uchar *m_fileNameCell = nullptr; // in m_fileNameBuffer

    std::mutex m_mutex;
    std::unique_ptr<SeriesFile> m_current; // replaced under m_mutex, by the thread that runs
    qsizetype m_fileCount = 0;             // guarded by m_mutex
    qsizetype m_filesDone = 0;             // guarded by m_mutex
};

/// The files that `pattern` matches, in the order of their names, after expansion of the graph's
/// variables and folders. A name without a match gives itself.
QStringList namesOfPattern(const ActionItem &action, const QString &pattern);

/// The expanded texts of the first column of input pin `pin`, one per row. Empty also when the run
/// has ended.
QStringList namesFromPin(ActionItem &action, int pin);

} // namespace corvanta
