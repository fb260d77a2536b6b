// The corpus of XML documents and the conformance suite in it, read by the tokenizer and by expat:
// elements, attributes and text are the same.
//
// Differences on purpose, which the test removes before it compares:
// - Spaces before a text and texts of spaces only are dropped. The code that joins the pieces of an
//   element's text puts them back between two pieces.
// - Line ends and spaces in attributes stay as they are written, whatever a DTD says of them.
// - Default attributes of a DTD are not added.
// - "&nbsp;" and other HTML references are known, in any letter case.
//
// Documents with entities of their own (DTD) are left out: their names are unknown here.
#include "codecs/markup/tokens/xml_tokenizer.h"
#include "codecs/zip/package_reader.h"
#include "tests/support/corpus.h"

#include <QDirIterator>
#include <QFile>
#include <QString>

#include <expat.h>
#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::markup;
using namespace Qt::StringLiterals;

namespace {

/// A document as one line per tag and text, in a form that does not show the differences above.
class Outline
{
public:
    void start(const QString &name) { put(u'<' + name); }
    void attribute(const QString &name, const QString &value)
    {
        put(u' ' + name + u'=' + value.simplified());
    }
    void end() { put(u">"_s); }
    void text(const QString &piece) { m_text += piece; }
    QString lines()
    {
        put(QString());
        return m_lines;
    }

private:
    void put(const QString &line)
    {
        const QString text = m_text.simplified().remove(u' ');
        m_lines += text.isEmpty() ? QString() : u'\'' + text + u'\n';
        m_lines += line + u'\n';
        m_text.clear();
    }
    QString m_lines;
    QString m_text;
};

/// False when the document is not well-formed, or has what is left out.
struct ExpatRun
{
    Outline outline;
    XML_Parser parser = nullptr;
    bool hasEntities = false;
};

ExpatRun &runOf(void *data)
{
    return *static_cast<ExpatRun *>(data);
}

bool readWithExpat(const QByteArray &bytes, QString *lines)
{
    ExpatRun run;
    run.parser = XML_ParserCreate(nullptr);
    XML_SetUserData(run.parser, &run);
    XML_SetElementHandler(
        run.parser,
        [](void *data, const XML_Char *name, const XML_Char **attributes) {
            runOf(data).outline.start(QString::fromUtf8(name));
            const int written = XML_GetSpecifiedAttributeCount(runOf(data).parser);
            for (int i = 0; i < written; i += 2) {
                runOf(data).outline.attribute(QString::fromUtf8(attributes[i]),
                                              QString::fromUtf8(attributes[i + 1]));
            }
        },
        [](void *data, const XML_Char *) { runOf(data).outline.end(); });
    XML_SetCharacterDataHandler(run.parser, [](void *data, const XML_Char *text, int n) {
        runOf(data).outline.text(QString::fromUtf8(text, n));
    });
    XML_SetEntityDeclHandler(run.parser,
                             [](void *data, const XML_Char *, int, const XML_Char *, int,
                                const XML_Char *, const XML_Char *, const XML_Char *,
                                const XML_Char *) { runOf(data).hasEntities = true; });
    const bool isGood = XML_Parse(run.parser, bytes.constData(), static_cast<int>(bytes.size()),
                                  1) == XML_STATUS_OK;
    XML_ParserFree(run.parser);
    *lines = run.outline.lines();
    return isGood && !run.hasEntities;
}

QString readWithTokenizer(const QByteArray &bytes)
{
    MemorySource source(bytes);
    XMLTokenizer tokenizer(source, 0);
    // What is shorter than the guess asks for is UTF-8 for expat.
    if (bytes.size() < 25 && !bytes.startsWith("\xFE\xFF") && !bytes.startsWith("\xFF\xFE")) {
        EXPECT_TRUE(tokenizer.setEncoding(CharMode::Utf8, {}, InvalidBytes::Fail));
    }
    tokenizer.setBalanced(true);
    Outline outline;
    const auto text = [](std::u16string_view units) {
        return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
    };
    for (;;) {
        const Token token = tokenizer.nextToken();
        if (token == Token::Start) {
            outline.start(text(tokenizer.name()));
            for (size_t i = 0; i < tokenizer.attributes().size(); ++i) {
                outline.attribute(text(decoded(tokenizer.attributeName(i))),
                                  text(decoded(tokenizer.attributeValue(i))));
            }
        } else if (token == Token::End) {
            outline.end();
        } else if (token == Token::Text ||
                   (token == Token::Clear && tokenizer.clearKind() == ClearKind::CData)) {
            outline.text(text(tokenizer.text()));
        } else if (token == Token::EndOfData) {
            return outline.lines();
        } else if (token == Token::Error) {
            return u"error %1 at line %2"_s.arg(QString::number(int(tokenizer.errorCode())),
                                                QString::number(tokenizer.line()));
        }
    }
}

/// Entities of a DTD that expat does not read either, and a "]" inside a DTD.
const QStringList kOtherwise{u"undeclared-entity.xml"_s, u"xhtml1.xhtml"_s,
                             u"xmltest/valid/not-sa/031.xml"_s};

/// False when expat refuses the document, or when it has entities.
bool readsLikeExpat(const QByteArray &bytes, const std::string &name)
{
    QString expected;
    if (!readWithExpat(bytes, &expected)) {
        return false;
    }
    EXPECT_EQ(readWithTokenizer(bytes).toStdString(), expected.toStdString()) << name;
    return true;
}

} // namespace

TEST(Expat, AgreesOnRealDocuments)
{
    CORVANTA_NEEDS_CORPUS();
    int compared = 0;
    QDirIterator files(test::corpusFile(u"xml"_s),
                       {u"*.xml"_s, u"*.osm"_s, u"*.rdf"_s, u"*.xhtml"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!kOtherwise.contains(files.fileName())) {
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            compared += readsLikeExpat(file.readAll(), file.fileName().toStdString()) ? 1 : 0;
        }
    }
    EXPECT_GT(compared, 70);
}

TEST(Expat, AgreesOnTheConformanceSuite)
{
    CORVANTA_NEEDS_CORPUS();
    QFile file(test::corpusFile(u"xml/xmltest.zip"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray archive = file.readAll();
    MemorySource source(archive);
    const auto opened = zip::PackageReader::open(source);
    ASSERT_TRUE(opened);
    int compared = 0;
    for (const zip::Member &member : (*opened)->members()) {
        const bool isDocument = member.name.endsWith(".xml") && !member.name.contains("/not-wf/");
        if (isDocument && !kOtherwise.contains(QString::fromUtf8(member.name))) {
            const auto bytes = (*opened)->readWhole(member);
            ASSERT_TRUE(bytes) << member.name.toStdString();
            compared += readsLikeExpat(*bytes, member.name.toStdString()) ? 1 : 0;
        }
    }
    EXPECT_GT(compared, 250);
}
