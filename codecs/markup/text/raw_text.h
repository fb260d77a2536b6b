// codecs/markup/text/raw_text.h
// A piece of a document as it stands in the tokenizer's buffer, decoded only when somebody asks.
#pragma once
#include <QtGlobal>

#include <string>
#include <string_view>

namespace corvanta::markup {

/// Bytes that a tokenizer's buffer lets one read from any place in its data.
inline constexpr quint32 kReadAhead = 64;

/// What has to be done to the bytes of a RawText.
enum class TextForm : quint8 {
    Plain,       ///< UTF-8, to be taken as it is; kReadAhead bytes may be read from any place in it
    Detached,    ///< the same outside a tokenizer's buffer: nothing may be read behind it
    JsonEscaped, ///< holds backslash escapes or raw line breaks of a JSON string
    XmlEntities, ///< holds "&"; what is no entity stays as it is
    External,    ///< of a TextSpan only: the text has a number and lies elsewhere
};

/// UTF-8 bytes and how to read them. Valid as long as what it was taken from.
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

/// Decode into a string of its own.
std::u16string decoded(const RawText &text);

} // namespace corvanta::markup
