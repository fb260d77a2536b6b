// The shapes of <r><a i="1">x</a><a/></r>, with their number of occurrences:
//
//     (document) 0
//      +- r 1
//          +- a 2      maxInParent 2: it repeats
//              +- @i 1
#include "codecs/markup/sample/shape_sampler.h"

#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <QStringView>

#include <algorithm>

namespace corvanta::markup {

namespace {

/// Limits of a sample: large enough to be representative, small enough to be fast.
constexpr qint64 kMaxTokens = 4'000'000;
constexpr size_t kMaxShapes = 20'000;
constexpr qint64 kMaxDepth = 64;

/// True for a name that a path can express: spaces at its ends would be dropped, and a saved graph,
/// which is XML, cannot hold every character.
bool fitsPath(QStringView name)
{
    const auto isXml = [](QChar c) {
        return c >= u' ' ? c.unicode() < 0xFFFE : c == u'\t' || c == u'\n' || c == u'\r';
    };
    return name == name.trimmed() && name.isValidUtf16() && std::ranges::all_of(name, isXml);
}

/// True for an attribute that declares a name space.
bool isNameSpace(QStringView attribute)
{
    return attribute == u"xmlns" || attribute.startsWith(u"xmlns:");
}

/// Reads the sample. Threads: one at a time. Not copied: m_shapes refers to a member.
class ShapeSampler
{
public:
    ShapeSampler(MarkupTokenizer &tokenizer, int records, const TextRule &rule)
        : m_tokenizer(tokenizer)
        , m_json(dynamic_cast<JSONTokenizer *>(&tokenizer))
        , m_xml(tokenizer.asXml())
        , m_records(std::max(records, 1))
        , m_clearIsText(rule.clearIsText)
    {
        m_shapes.resize(1);
    }

    ShapeSample read();

private:
    void dropStrayText();
    bool add(Token token);
    void beginValue();
    bool isTextSection() const;
    void begin(const std::u16string &name, bool isItem);
    bool end();
    void addText() { m_shapes[m_current].hasText = m_shapes[m_current].hasText || m_unseen == 0; }
    void addAttributes(size_t shape);
    size_t childOf(size_t parent, const std::u16string &name);

    MarkupTokenizer &m_tokenizer;
    JSONTokenizer *m_json;
    const XMLTokenizer *m_xml;
    qint64 m_records;
    bool m_clearIsText;
    ShapeSample m_sample;
    Shapes &m_shapes = m_sample.shapes;
    size_t m_current = 0;
    qint64 m_topScalars = 0; ///< of the count of shape 0
    qint64 m_unseen = 0;     ///< open elements inside m_current that have no shape
};

/// The shape of a child, new or known; kNoShape for a name that paths cannot express and when there
/// are too many shapes.
size_t ShapeSampler::childOf(size_t parent, const std::u16string &name)
{
    const auto known = m_shapes[parent].byName.find(name);
    if (known != m_shapes[parent].byName.end()) {
        return known->second;
    }
    const bool isNameable = fitsPath(name);
    if (m_shapes.size() == kMaxShapes || !isNameable) {
        (isNameable ? m_sample.beyondLimits : m_sample.unnameable).add([&] {
            return QString::fromStdU16String(name);
        });
        return kNoShape;
    }
    const size_t child = m_shapes.size();
    m_shapes.emplace_back();
    m_shapes[child].name = name;
    m_shapes[child].parent = parent;
    m_shapes[parent].children.push_back(child);
    m_shapes[parent].byName.emplace(name, child);
    return child;
}

/// An element begins. Inside an element without a shape, elements are only counted.
void ShapeSampler::begin(const std::u16string &name, bool isItem)
{
    const bool tooDeep = m_tokenizer.depth() > kMaxDepth;
    if (tooDeep && m_unseen == 0) {
        m_sample.beyondLimits.add([&] { return QString::fromStdU16String(name); });
    }
    const size_t child = m_unseen > 0 || tooDeep ? kNoShape : childOf(m_current, name);
    if (child == kNoShape) {
        ++m_unseen;
        return;
    }
    Shape &shape = m_shapes[child];
    ++shape.count;
    shape.maxInParent = std::max(shape.maxInParent, ++shape.inParent);
    shape.isItem = isItem;
    m_current = child;
    for (const size_t inner : shape.children) {
        m_shapes[inner].inParent = 0;
    }
    if (m_xml != nullptr) {
        addAttributes(child);
    }
}

void ShapeSampler::addAttributes(size_t shape)
{
    for (size_t i = 0; i < m_xml->attributes().size(); ++i) {
        const std::u16string name = decoded(m_xml->attributeName(i));
        const size_t attribute = isNameSpace(name) ? kNoShape : childOf(shape, u"@" + name);
        if (attribute != kNoShape) {
            m_shapes[attribute].hasText = m_shapes[attribute].isAttribute = true;
            ++m_shapes[attribute].count;
        }
    }
}

/// The current element ends; false when it was the last record of the sample.
bool ShapeSampler::end()
{
    if (m_unseen > 0) {
        --m_unseen;
        return true;
    }
    const Shape &shape = m_shapes[m_current];
    bool isOutermost = shape.isRepeated() && shape.holdsOthers();
    for (size_t above = shape.parent; above != 0; above = m_shapes[above].parent) {
        isOutermost = isOutermost && !m_shapes[above].isRepeated();
    }
    m_current = shape.parent;
    return !isOutermost || shape.count < m_records;
}

/// A top-level value begins. Values other than arrays are records.
void ShapeSampler::beginValue()
{
    for (const size_t child : m_shapes[0].children) {
        m_shapes[child].inParent = 0;
    }
    const auto kind = m_json->documentKind();
    m_shapes[0].count += kind == JSONTokenizer::DocumentKind::Array ? 0 : 1;
    m_topScalars += kind == JSONTokenizer::DocumentKind::Scalar ? 1 : 0;
}

bool ShapeSampler::isTextSection() const
{
    return m_clearIsText &&
           (m_xml->clearKind() == ClearKind::CData || m_xml->clearKind() == ClearKind::Pre);
}

/// Add one token; false when the sample is complete.
bool ShapeSampler::add(Token token)
{
    switch (token) {
    case Token::Start:
        begin(std::u16string(m_tokenizer.name()),
              m_json != nullptr && m_tokenizer.rawText().isEmpty());
        return true;
    case Token::End:
        return end();
    case Token::Text:
        addText();
        return true;
    case Token::Clear:
        if (isTextSection()) {
            addText();
        }
        return true;
    case Token::DocumentStart:
        beginValue();
        return true;
    case Token::DocumentEnd:
        return m_shapes[0].count < m_records;
    default:
        return token != Token::EndOfData && token != Token::Error;
    }
}

/// Text at the top is a record only when there is nothing else: next to elements, arrays or objects
/// the extractor counts it.
void ShapeSampler::dropStrayText()
{
    if (m_shapes[0].holdsOthers()) {
        m_shapes[0].hasText = false;
        m_shapes[0].count -= m_topScalars;
    }
}

ShapeSample ShapeSampler::read()
{
    if (m_json != nullptr) {
        m_json->setStrayTextHandler([] {}); // the extractor does not read it, and reports it
    }
    m_tokenizer.setDocumentMarks(true);
    m_tokenizer.setBalanced(true);
    for (qint64 tokens = 0; tokens < kMaxTokens && add(m_tokenizer.nextToken()); ++tokens) {
    }
    dropStrayText();
    return std::move(m_sample);
}

} // namespace

ShapeSample sampleShapes(MarkupTokenizer &tokenizer, int records, const TextRule &rule)
{
    return ShapeSampler(tokenizer, records, rule).read();
}

} // namespace corvanta::markup
