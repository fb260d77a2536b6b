// A variable (column) of a SAS data set or transport file, as their writers take it.
#pragma once
#include <QByteArray>

namespace corvanta::sas {

/// Limits of both formats, in bytes.
inline constexpr int kMaxNameBytes = 32;
inline constexpr int kMaxLabelBytes = 256;
inline constexpr int kMaxTextBytes = 32767;
/// Width of a number without a declared one. Smaller widths exist in transport files only.
inline constexpr int kNumberBytes = 8;
inline constexpr int kMinNumberBytes = 3;

/// Names, labels and formats are in the encoding of the file, and within the limits above.
struct Variable
{
    QByteArray name;
    QByteArray label = {};  ///< empty: none
    QByteArray format = {}; ///< for example "DATE9."; empty: none
    bool isText = false;
    /// Texts are padded with spaces to it; a narrow number loses its last bytes.
    int width = kNumberBytes; ///< bytes of each value
};

} // namespace corvanta::sas
