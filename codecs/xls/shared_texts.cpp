// SST (MS-XLS, 2.4.265): uses 4, texts 4, then each text as length 2 and BIFF 8 text. It continues
// in CONTINUE records, which may begin anywhere, also inside a text.
#include "codecs/xls/shared_texts.h"

namespace corvanta::xls {

void SharedTexts::read(RecordReader &reader, const Record &record, const TextReader &rules)
{
    constexpr qint64 kCountBytes = 8;
    m_units.clear();
    m_ends.clear();
    ContinuedBytes in(reader, record);
    in.skip(kCountBytes);
    while (!in.atEnd()) {
        rules.append(in, in.u16(), &m_units);
        m_ends.push_back(m_units.size());
    }
}

} // namespace corvanta::xls
