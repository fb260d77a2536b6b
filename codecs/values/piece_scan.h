// Finds the kinds of the columns of a text in pieces, on worker threads.
//
// The thread that calls run() reads the text and cuts it where a record seems to end. Every piece
// is scanned by itself, and the results are joined in the order of the text. They are those of one
// scan from the first to the last byte, also the places of values:
//
//   - A piece counts if the scan of it ends where it ends, between two records. Then the next piece
//     begins with a record. Otherwise the calling thread scans the rest of the text in order.
//   - A piece with a value that is an exception to those before it is scanned in order again, which
//     gives the value its place. Each column has at most two exceptions.
//
// Memory: at most 2 x workers + 3 pieces.
// Threads: run() and the destructor one at a time.
#pragma once
#include "base/byte_source.h"
#include "codecs/values/column_scan.h"

#include <QByteArray>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <thread>
#include <vector>

namespace corvanta::values {

/// A part of the text, and what was found in it.
struct Piece
{
    QByteArray text = {};
    std::vector<ColumnScan> scans = {};
    qint64 rows = 0;
    qint64 lines = 0;
    /// The scan ended at the end of the text, between two records.
    bool isComplete = false;
};

class PieceScan
{
public:
    /// What a format does with its text.
    class Format
    {
    public:
        virtual ~Format() = default;
        /// The number of bytes before the last place where a record seems to begin; 0: there is
        /// none. A wrong answer costs time and nothing else.
        virtual size_t cut(std::string_view text) const = 0;
        /// Scan the text of `piece`, which seems to begin with a record, into its other members.
        /// `scans` has an element per column. Threads: any, several at the same time.
        virtual void scan(Piece *piece) const = 0;
        /// Scan the text that follows into the scans of run(), with the places that it has.
        virtual void scanInOrder(ByteSource &text) = 0;
        /// The text that follows is in the scans of run(): only places depend on it.
        virtual void skip(qint64 rows, qint64 lines) = 0;
    };

    /// Bytes of a piece: large enough to be worth a lock, small enough for a cache.
    static constexpr qsizetype kPieceBytes = qsizetype(1) << 20;

    /// Add to `scans` what `format` finds. Both must outlive this object. Threads start with the
    /// second piece. With 0 workers, and where no thread can be started, run() does all the work.
    PieceScan(Format &format, std::span<ColumnScan> scans, int workers = defaultWorkers(),
              qsizetype pieceBytes = kPieceBytes);
    /// Joins the threads.
    ~PieceScan();
    PieceScan(const PieceScan &) = delete;
    PieceScan &operator=(const PieceScan &) = delete;

    /// Scan all of `source`, from its position. Call it once.
    void run(ByteSource &source);

    /// One thread for each further core, at most 3.
    static int defaultWorkers();

private:
    struct Job
    {
        Piece piece;
        bool isTaken = false; // guarded by m_mutex, like isDone
        bool isDone = false;
    };

    std::unique_ptr<Job> readPiece(ByteSource &source);
    void add(std::unique_ptr<Job> job);
    std::unique_ptr<Job> takeFirst();
    bool join(const Piece &piece);
    void scanRest(std::unique_ptr<Job> first, ByteSource &source);
    void startWorkers();
    void work();
    Job *findWork();
    void scan(Job *job, std::unique_lock<std::mutex> &lock);
    void stop();

    Format &m_format;
    std::span<ColumnScan> m_scans;
    const int m_workerCount;
    const qsizetype m_pieceBytes;
    QByteArray m_rest;        // read, and after the last cut
    QByteArray m_spare;       // of a piece that is done: its memory is used again
    bool m_isEnded = false;   // no further piece is read
    bool m_hasFailed = false; // the source failed

    std::mutex m_mutex;
    std::condition_variable m_added; // a job, or the end
    std::condition_variable m_done;
    std::deque<std::unique_ptr<Job>> m_jobs; // guarded by m_mutex; in the order of the text
    bool m_isStopped = false;                // guarded by m_mutex
    std::vector<std::thread> m_workers;      // last: the other members outlive it
};

} // namespace corvanta::values
