// A series with its tag (ECMA-376 part 1, 21.2.2; the prefix is that of the root element):
//
//   <c:chartSpace><c:chart><c:plotArea>
//     <c:barChart>                                   one of 15 elements
//       <c:ser>
//         <c:tx><c:v>[[KOBData sales]]</c:v></c:tx>  the tag, here or in a strRef with f and v; its
//                                                    series is what follows it, up to:
//         <c:errBars> <c:plus>..</c:plus> <c:minus>..</c:minus> </c:errBars>
//         <c:cat> <c:strRef>..</c:strRef> </c:cat>   axes, each with numLit, numRef, strLit, strRef
//         <c:val> <c:numRef>..</c:numRef> </c:val>
//       </c:ser>                                     this
//     </c:barChart>
//
// A tag is text: it is also found in comments and attributes. Elements are found as markup.
#include "codecs/charts/chart_tags.h"

#include "codecs/opc/markup_scan.h"

#include <algorithm>
#include <array>
#include <optional>

namespace corvanta::charts {

namespace {

constexpr QByteArrayView kTagBegin = "[[kobdata ";
constexpr QByteArrayView kTagEnd = "]]";

/// Users type tags by hand, so the letter case of the name does not matter.
bool startsWithTag(QByteArrayView text)
{
    return text.size() >= kTagBegin.size() &&
           text.first(kTagBegin.size()).compare(kTagBegin, Qt::CaseInsensitive) == 0;
}

/// The offset of the next tag at or after `at`; -1 if there is none.
qsizetype nextTagBegin(QByteArrayView text, qsizetype at)
{
    while ((at = text.indexOf("[[", at)) >= 0 && !startsWithTag(text.sliced(at))) {
        ++at;
    }
    return at;
}

/// What is left of a text without the markup in it.
QByteArray withoutMarkup(QByteArrayView text)
{
    QByteArray kept;
    bool isInside = false;
    for (const char c : text) {
        if (c == '<') {
            isInside = true;
        } else if (c == '>') {
            isInside = false;
        } else if (!isInside) {
            kept += c;
        }
    }
    return kept;
}

ChartTag makeTag(QByteArrayView text, qsizetype begin, qsizetype close)
{
    const qsizetype nameBegin = begin + kTagBegin.size();
    const QByteArrayView name = text.sliced(nameBegin, close - nameBegin);
    ChartTag tag{.written = name.trimmed(), .begin = begin, .end = close + kTagEnd.size()};
    tag.use = name.contains('<') ? TagUse::Split : TagUse::NoChart;
    tag.reference =
        opc::decoded(tag.use == TagUse::Split ? withoutMarkup(name) : name.toByteArray()).trimmed();
    return tag;
}

/// All tags of the text. A beginning needs an end; if another beginning follows before the end, the
/// end belongs to that.
Result<std::vector<ChartTag>, opc::Error> findTexts(QByteArrayView text)
{
    std::vector<ChartTag> tags;
    qsizetype close = -1; // of the next end; kept, so that many beginnings before it cost no search
    for (qsizetype at = nextTagBegin(text, 0); at >= 0;) {
        const qsizetype nameBegin = at + kTagBegin.size();
        close = close < nameBegin ? text.indexOf(kTagEnd, nameBegin) : close;
        if (close < 0) {
            break;
        }
        const qsizetype next = nextTagBegin(text.first(close), nameBegin);
        if (next >= 0) {
            at = next;
            continue;
        }
        if (tags.size() == kMaxTags) {
            return Fault{opc::Error::TooLarge, {}, at};
        }
        tags.push_back(makeTag(text, at, close));
        at = nextTagBegin(text, close + kTagEnd.size());
    }
    return tags;
}

/// The elements with texts: literals, and references to the cells that hold them.
bool isTextData(QByteArrayView local)
{
    return local == QByteArrayView("strLit") || local == QByteArrayView("strRef") ||
           local == QByteArrayView("multiLvlStrRef");
}

/// What the elements with data say about their content.
std::optional<AxisKind> kindOf(QByteArrayView local)
{
    if (local == QByteArrayView("numLit") || local == QByteArrayView("numRef")) {
        return AxisKind::Number;
    }
    return isTextData(local) ? std::optional(AxisKind::Text) : std::nullopt;
}

/// Without such an element: categories may be texts, all other data is numbers.
AxisKind usualKind(int axis)
{
    return axis == 0 ? AxisKind::Text : AxisKind::Number;
}

/// Walks over the markup once and assigns chart elements and axes to the tags.
class SeriesFinder
{
public:
    SeriesFinder(QByteArrayView text, std::vector<ChartTag> &tags)
        : m_cursor(text)
        , m_tags(tags)
    {
    }

    /// Returns false for broken markup.
    bool run()
    {
        m_next = m_tags.begin();
        while (m_cursor.next()) {
            passTags(m_cursor.tag().begin);
            visit(m_cursor.tag());
        }
        return !m_cursor.isBroken();
    }

private:
    /// Assign the tags before the offset to the current chart.
    void passTags(qsizetype offset)
    {
        for (; m_next != m_tags.end() && m_next->begin < offset; ++m_next) {
            if (m_next->use == TagUse::Split || !m_chart) {
                continue;
            }
            m_next->type = *m_chart;
            m_next->use = m_series == nullptr ? TagUse::NoValues : TagUse::Repeated;
            if (m_series == nullptr) {
                beginSeries(&*m_next);
            }
        }
    }

    void visit(const opc::Tag &tag)
    {
        // The part's root decides which prefix stands for the namespace of charts.
        if (!m_prefix) {
            m_prefix = tag.prefix();
        }
        if (tag.prefix() != *m_prefix) {
            return;
        }
        if (tag.kind == opc::Tag::Kind::Close) {
            visitClose(tag);
            return;
        }
        if (tag.kind == opc::Tag::Kind::Open) {
            visitName(tag);
        }
        if (m_axis != nullptr) {
            noteData(tag);
        } else if (m_series != nullptr) {
            visitAxis(tag);
        } else if (!m_chart && tag.kind == opc::Tag::Kind::Open) {
            m_chart = chartTypeOf(tag.local());
        }
    }

    /// Note the reference in the name of a series: ser, tx, strRef directly in each other. Other
    /// elements of a series can have a tx, too.
    void visitName(const opc::Tag &tag)
    {
        const QByteArrayView local = tag.local();
        if (local == QByteArrayView("ser")) {
            m_place = NamePlace::Series;
            m_name.reset();
        } else if (m_place == NamePlace::Series && local == QByteArrayView("tx")) {
            m_place = NamePlace::Name;
        } else {
            if (m_place == NamePlace::Name && local == QByteArrayView("strRef")) {
                m_name = {tag.name, tag.begin, tag.end};
                m_firstInName = m_next;
            }
            m_place = NamePlace::Other;
        }
    }

    /// The reference ends: assign it to the tags in it.
    void endName(qsizetype end)
    {
        m_name->end = end;
        std::for_each(m_firstInName, m_next, [this](ChartTag &tag) { tag.name = m_name; });
        m_name.reset();
    }

    void visitClose(const opc::Tag &tag)
    {
        const QByteArrayView local = tag.local();
        if (m_axis != nullptr && local == axisElements(*m_chart)[indexOf(*m_axis)]) {
            if (--m_axisDepth == 0) {
                m_axis->end = tag.end;
                endAxis();
            }
        } else if (m_name && local == QByteArrayView("strRef")) {
            endName(tag.end);
        } else if (local == QByteArrayView("ser")) {
            endSeries();
        } else if (m_chart && local == chartElement(*m_chart)) {
            // Without the end of a series the tag has none.
            m_found = {};
            endSeries();
            m_chart.reset();
        }
    }

    void beginSeries(ChartTag *tag)
    {
        m_series = tag;
        m_found = {};
    }

    /// Note the first element of each axis.
    void visitAxis(const opc::Tag &tag)
    {
        const auto elements = axisElements(*m_chart);
        for (size_t i = 0; i < elements.size(); ++i) {
            if (elements[i] == tag.local() && !m_found[i]) {
                m_found[i] = {.axis = static_cast<int>(i),
                              .name = tag.name,
                              .begin = tag.begin,
                              .openEnd = tag.end,
                              .end = tag.end,
                              .isEmptyTag = tag.kind == opc::Tag::Kind::Empty};
                m_axis = &*m_found[i];
                m_axisDepth = 1;
                m_name.reset(); // not nested correctly
                if (m_axis->isEmptyTag) {
                    endAxis();
                }
                return;
            }
        }
    }

    static size_t indexOf(const AxisPlace &place) { return static_cast<size_t>(place.axis); }

    /// An element inside the axis.
    void noteData(const opc::Tag &tag)
    {
        if (!m_kind) {
            m_kind = kindOf(tag.local());
        }
        if (tag.kind == opc::Tag::Kind::Open && tag.name == m_axis->name) {
            ++m_axisDepth;
        }
    }

    void endAxis()
    {
        m_axis->kind = m_kind.value_or(usualKind(m_axis->axis));
        m_axis = nullptr;
        m_kind.reset();
    }

    /// Complete the tag of the current series, if there is one.
    void endSeries()
    {
        // The series ends inside an axis: its markup is not nested correctly.
        if (m_axis != nullptr) {
            m_found[indexOf(*m_axis)].reset();
            m_axis = nullptr;
            m_kind.reset();
        }
        if (m_series != nullptr && m_found[kValueAxis]) {
            m_series->use = TagUse::Series;
            m_series->axes = sortedAxes();
        }
        m_series = nullptr;
    }

    std::vector<AxisPlace> sortedAxes() const
    {
        std::vector<AxisPlace> places;
        for (const auto &place : m_found) {
            if (place) {
                places.push_back(*place);
            }
        }
        std::sort(places.begin(), places.end(),
                  [](const AxisPlace &a, const AxisPlace &b) { return a.begin < b.begin; });
        return places;
    }

    /// Where the cursor is, as far as it matters for the name of a series.
    enum class NamePlace : quint8 { Other, Series, Name };

    opc::TagCursor m_cursor;
    std::vector<ChartTag> &m_tags;
    std::vector<ChartTag>::iterator m_next; // the first one that is not passed
    std::optional<QByteArrayView> m_prefix;
    std::optional<ChartType> m_chart;                       // around the cursor
    ChartTag *m_series = nullptr;                           // whose end is not reached
    std::array<std::optional<AxisPlace>, kMaxAxes> m_found; // of m_series
    AxisPlace *m_axis = nullptr;                            // around the cursor, one of m_found
    std::optional<AxisKind> m_kind;                         // of m_axis
    int m_axisDepth = 0;                                    // of elements of its name
    NamePlace m_place = NamePlace::Other;
    std::optional<NameReference> m_name;                // around the cursor
    std::vector<ChartTag>::iterator m_firstInName = {}; // the first tag after its beginning
};

} // namespace

Result<std::vector<ChartTag>, opc::Error> findTags(QByteArrayView part)
{
    auto tags = findTexts(part);
    const bool isMalformed = tags && !tags->empty() && !SeriesFinder(part, *tags).run();
    return isMalformed ? Fault{opc::Error::Malformed} : std::move(tags);
}

} // namespace corvanta::charts
