// Texts of a document as undecoded bytes of the tokenizer's buffer, and how they are decoded.
#pragma once
#include <QtGlobal>

#include <string>
#include <string_view>

namespace corvanta::markup {

/// Bytes that may be read starting at any place in the data of a tokenizer's buffer.
inline constexpr quint32 kReadAhead = 64;

/// How the bytes of a RawText are decoded.
enum class TextForm : quint8 {
    /// UTF-8; kReadAhead bytes may be read starting at any place in it.
    Plain,
    /// UTF-8 outside a tokenizer's buffer: nothing may be read after it.
    Detached,
    /// UTF-8 with backslash escapes or raw line breaks of a JSON string.
    JsonEscaped,
    /// UTF-8 with "&"; an unknown entity stays unchanged.
    XmlEntities,
    /// UTF-8 with "&" of HTML; what is not a reference stays unchanged.
    HtmlEntities,
    /// The same, of an attribute.
    HtmlAttribute,
    /// Of a TextSpan only: the span holds the number of a text outside the buffer.
    External,
};

/// A view of UTF-8 bytes. Valid as long as the buffer or string that it refers to.
struct RawText
{
    const char *data = "";
    quint32 size = 0;
    TextForm form = TextForm::Plain;

    std::string_view view() const { return {data, size}; }
    bool isEmpty() const { return size == 0; }
};

/// Decode into `out`, which has room for `text.size` units; returns the units written.
qsizetype decode(const RawText &text, char16_t *out);

/// Decode into a new string.
std::u16string decoded(const RawText &text);

} // namespace corvanta::markup
