// Makes names of columns fit the rules of SAS for variables.
//
// Sizes are in bytes. Names are UTF-8. Pure functions; any thread may call them.
#pragma once
#include <QByteArray>
#include <QStringList>

#include <vector>

namespace corvanta::sas {

/// The whole characters at the start of UTF-8 text that fit `bytes` bytes.
QByteArray cutUtf8(const QByteArray &text, qsizetype bytes);

/// A name that SAS accepts everywhere: letters of ASCII, digits and "_", not starting with a digit,
/// not reserved, at most `maxBytes` long. Accents are removed; other characters become "_". Empty
/// for an empty name.
QByteArray validName(const QString &column, qsizetype maxBytes);

/// Change names that are empty or equal another one: their ends are replaced by the smallest number
/// from 2 that makes them different from all others; an empty name becomes "C" and the number of
/// its column from 1. Names that are those of their columns, unchanged, have precedence. With
/// Qt::CaseInsensitive the case of ASCII letters makes no difference. Returns the indexes of the
/// changed names. Both lists have the same size.
std::vector<size_t> makeUnique(std::vector<QByteArray> &names, const QStringList &columns,
                               Qt::CaseSensitivity sensitivity, qsizetype maxBytes);

} // namespace corvanta::sas
