// The text of a graph file, so that what the user has not edited is saved as it was.
//
// The text is split into the elements inside <graph> and what is between them. An element that is
// unchanged is written byte for byte, of a changed one only the attributes and the parameters that
// differ. Comments, unknown elements and the order of the file survive.
//
// A note is a processing instruction, which other programs ignore:
//
//     <?note x='96' y='32' text='Prices of 2026'?>
//
// Threads: one at a time.
#pragma once
#include "studio/document/content.h"

#include <QByteArray>
#include <QStringList>

namespace corvanta::studio {

class SourceText
{
public:
    /// The text of a new graph.
    SourceText();
    /// Split a well-formed document. Returns false, and stays a new graph, if it is not UTF-8; it
    /// is then saved in the standard form.
    bool split(const QByteArray &document);

    /// The document with unknown elements replaced by blanks. The host rejects such elements, but
    /// the editor keeps them.
    QByteArray knownPart() const;
    /// The notes of the document, without keys.
    QVector<Note> notes() const;
    /// Whether action number `index` of the document has a position.
    bool hasPosition(int index) const;
    /// The document for a state whose origins are numbers of this document's elements. `version` is
    /// written into a new document; negative: none.
    QByteArray compose(const Content &content, double version) const;

private:
    enum class Kind { Variable, Action, Link, Note, Other };
    static constexpr size_t kKinds = 5;
    /// An element or a note directly inside <graph>.
    struct Element
    {
        Kind kind = Kind::Other;
        QString before; ///< text between the previous element and this one
        QString text;
        int number = 0; ///< among the elements of its kind
        QMap<QString, QString> attributes;
    };
    class Composer;

    /// Whether there is no text to keep.
    bool isNew() const { return m_end.isEmpty(); }
    Element elementAt(qsizetype begin, qsizetype end) const;
    static QMap<QString, QString> attributesOf(const QString &element, QString *name);

    QString m_text;
    QString m_begin; // up to the end of <graph>
    QVector<Element> m_elements;
    QString m_end; // the rest; empty: a new graph
};

} // namespace corvanta::studio
