// Changes to the XML text of a package part, collected and then applied in one pass.
#pragma once
#include "codecs/opc/outline.h"

namespace corvanta::opc {

/// Changes may be added in any order. Insertions at one offset are applied in the order of the
/// calls. Threads: one at a time.
class Splices
{
public:
    /// `text` must outlive the splices; offsets and elements refer to it.
    explicit Splices(QByteArrayView text)
        : m_text(text)
    {
    }

    /// Insert `added` before the byte at offset `at`.
    void insert(qsizetype at, const QByteArray &added) { replace(at, at, added); }
    /// Replace the bytes from `begin` up to, but not including, `end`.
    void replace(qsizetype begin, qsizetype end, const QByteArray &added);
    /// Insert `added` after the last child of an element; opens an empty element.
    void append(const Element &element, const QByteArray &added);
    /// Set an attribute without prefix. `value` must need no escaping.
    void setAttribute(const Tag &tag, QByteArrayView name, const QByteArray &value);

    /// The changed text. No two changes may overlap.
    QByteArray apply();

private:
    struct Change
    {
        qsizetype begin;
        qsizetype end;
        QByteArray added;
    };
    QByteArrayView m_text;
    std::vector<Change> m_changes;
};

} // namespace corvanta::opc
