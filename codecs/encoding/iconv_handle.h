// Owns a converter of iconv, which converts between any two encodings that it knows by name.
//
// A converter may have a state: some encodings switch character sets by bytes in the text, and some
// hold a letter back to join it with an accent. Threads: one at a time per object.
#pragma once
#include <QByteArray>

#include <memory>

namespace corvanta::encoding {

class IconvHandle
{
public:
    /// Not open.
    IconvHandle() = default;
    /// Convert `from` to `to`. An empty name, which is the encoding of the locale for iconv, and a
    /// name that iconv does not know give a handle that is not open.
    IconvHandle(const QByteArray &to, const QByteArray &from);

    bool isOpen() const { return m_converter != nullptr; }

    /// Convert until the input or the room ends, or a character is invalid. Advances `*in` and
    /// `*out`, and subtracts from `*inLeft` and `*room`, which are bytes. Returns 0, or why it
    /// stopped: EILSEQ, EINVAL (the input ends inside a character) or E2BIG (no room). Must be
    /// open.
    int convert(const char **in, size_t *inLeft, char **out, size_t *room) const;
    /// Write what the state holds back, and return to the initial state.
    void finish(char **out, size_t *room) const;
    /// Return to the initial state.
    void reset() const;

private:
    struct Close
    {
        void operator()(void *converter) const noexcept;
    };

    std::unique_ptr<void, Close> m_converter; // iconv_t is a void pointer; null: not open
};

/// The name of UTF-16 in the byte order of this machine, without a byte-order mark.
inline const char *nativeUtf16()
{
    return Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "UTF-16LE" : "UTF-16BE";
}

} // namespace corvanta::encoding
