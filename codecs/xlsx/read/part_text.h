// The text of a package part as a window that moves over it, and its markup as a stream of items.
//
// Hot loops work on begin() to end() directly; everything unusual goes through nextItem(). Format:
// XML 1.0 without a document type declaration (ECMA-376 part 2).
#pragma once
#include "codecs/opc/markup_scan.h"
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xlsx/read/ahead_source.h"
#include "codecs/zip/package_reader.h"

#include <QString>

#include <atomic>
#include <memory>
#include <vector>

namespace corvanta::xlsx {

/// An item of the markup. Its views are valid until the next call for an item or bytes.
struct MarkupItem
{
    enum class Kind : quint8 {
        Text,  ///< raw text between tags, with its references
        CData, ///< the content of a CDATA section: literal text
        Tag,
        End, ///< of the part
    };
    Kind kind = Kind::End;
    QByteArrayView text = {}; ///< of Text and CData
    opc::Tag tag = {};        ///< of Tag; its offsets mean nothing

    bool isOpening(QByteArrayView local) const
    {
        return kind == Kind::Tag && tag.kind != opc::Tag::Kind::Close && tag.local() == local;
    }
    bool isClosing(QByteArrayView local) const
    {
        return kind == Kind::Tag && tag.kind == opc::Tag::Kind::Close && tag.local() == local;
    }
};

/// Threads: one at a time; fractionDone() and stop() any.
class PartText
{
public:
    /// One item of markup, for example a text or a cell, in bytes at most. Longer ones are damage
    /// or an attack: a cell holds 32,767 characters.
    static constexpr qsizetype kMaxItemBytes = qsizetype(16) << 20;

    /// `name` is for faults. `stream` is the member of the part, of `size` bytes.
    PartText(QString name, std::unique_ptr<zip::MemberStream> stream, qint64 size);

    /// The bytes that have been read and not consumed; at least Piece::kPadding readable bytes,
    /// which are not part of the text, follow.
    const char *begin() const { return m_begin; }
    const char *end() const { return m_end; }
    /// Consume the bytes up to `to`, which is in the window.
    void consumeTo(const char *to) { m_begin = to; }
    /// Add bytes to the window; it may move. Returns false at the end of the part.
    /// Errors: Damaged, ReadFailed, Stopped, TooLarge (the window has kMaxItemBytes).
    sheet::WorkbookResult<bool> extend();

    /// The next item, which is consumed. Comments and processing instructions are skipped.
    /// Errors: also Damaged for broken markup; Unsupported for text that is not UTF-8.
    sheet::WorkbookResult<MarkupItem> nextItem();
    /// Consume everything up to the closing tag of the element whose opening tag was the last item.
    /// Errors: those of nextItem().
    sheet::WorkbookResult<void> skipElement(const opc::Tag &opening);

    /// A fault at the current place. `cause` is in words.
    Fault<sheet::WorkbookError> fault(sheet::WorkbookError code, const QString &cause) const;
    /// The fault of markup that ends inside an element.
    Fault<sheet::WorkbookError> truncated() const;

    double fractionDone() const;
    void stop() { m_source.stop(); }

private:
    Fault<sheet::WorkbookError> sourceFault() const;
    void take(const Piece &piece);
    sheet::WorkbookResult<bool> ensureText();
    sheet::WorkbookResult<bool> scanItem(MarkupItem *item);

    const QString m_name;
    const qint64 m_size;
    AheadSource m_source;
    std::vector<char> m_long; // the window, when it is longer than a piece's headroom
    const char *m_begin = nullptr;
    const char *m_end = nullptr;
    std::atomic<qint64> m_read = 0; // bytes that the window has had
    bool m_isStart = true;
};

/// What a fault of a member means for its workbook.
Fault<sheet::WorkbookError> memberFault(const Fault<zip::Error> &fault, const QString &member);

} // namespace corvanta::xlsx
