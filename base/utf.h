// base/utf.h
// UTF-8 <-> UTF-16 for blocks and cells, without QString and without allocation.
#pragma once
#include <QtGlobal>

namespace corvanta {

/// Convert `n` bytes of UTF-8 into `out`, which has room for `n` units; returns the units written.
/// Each byte of an ill-formed sequence becomes one U+FFFD.
qsizetype utf8ToUtf16(const char *in, qsizetype n, char16_t *out);

/// The same, but each byte of an ill-formed sequence becomes the Latin-1 character of its value.
qsizetype utf8OrLatin1ToUtf16(const char *in, qsizetype n, char16_t *out);

/// Widen the ASCII at the front of `in` into `out`, which has room for `n` units (what lies behind
/// the taken ones may be overwritten); returns how many bytes it is.
qsizetype asciiToUtf16(const char *in, qsizetype n, char16_t *out);

/// Convert `n` units of UTF-16 into `out`, which has room for `3 * n` bytes; returns the bytes
/// written. Pairs are combined, a lone surrogate becomes U+FFFD.
qsizetype utf16ToUtf8(const char16_t *in, qsizetype n, char *out);

} // namespace corvanta
