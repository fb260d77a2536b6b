// What the writers of SAS data sets and transport files report.
#pragma once
#include <QtGlobal>

namespace corvanta::sas {

/// The detail of a fault says more where noted.
enum class Error : quint8 {
    CannotWrite = 1,  ///< The sink failed; it has the reason.
    Library = 2,      ///< The library refused a call (detail: its message).
    TooManyVariables, ///< More than the format can hold (detail: their number and the limit).
    TooManyRows,      ///< The same.
    NamesTooLong,     ///< Names, labels and formats together exceed what readers accept.
};

} // namespace corvanta::sas
