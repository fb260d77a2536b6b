#include "actions/read_xbf/read_xbf.h"

#include "actions/read_xbf/xbf_file.h"
#include "corvanta/system.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionReadXBF::ActionReadXBF(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadXbfEntry, saved, parameters)
{
}

// ---- Before the first row.

encoding::TextDecoder ActionReadXBF::makeDecoder() const
{
    switch (m_params.encoding) {
    case XbfEncoding::Windows1252:
        return encoding::TextDecoder::windows1252();
    case XbfEncoding::System:
        return encoding::TextDecoder::named(currentACPName());
    case XbfEncoding::Utf8:
        return encoding::TextDecoder::utf8();
    default: // Kept for saved graphs: any other number leaves the bytes unconverted.
        return encoding::TextDecoder::unconverted();
    }
}

void ActionReadXBF::start()
{
    m_series.start(*this, namesOfPattern(*this, m_params.fileName), {});
    // No file is open now: the old decoder is not used any more.
    m_decoder.emplace(makeDecoder());
    // A failure is logged and fails the run. step() then finds no open file and ends it.
    m_series.openNext();
}

// ---- Files and messages.

FileSeries::Opened ActionReadXBF::openFile(const QString &name)
{
    return XbfFile::open(*this, name, *m_decoder, m_params);
}

/// A missing file is skipped, but the first one defines the columns.
bool ActionReadXBF::reportMissing(const QString &name)
{
    if (!m_series.hasColumns()) {
        return fail(u"ERROR: cannot open DBF file '%1'\n"_s.arg(name));
    }
    warn(u"Warning: cannot open DBF file '%1'\n"_s.arg(name));
    return true;
}

/// The type message of this reader names the type in the first file first.
bool ActionReadXBF::reportMismatch(const ColumnMismatch &mismatch)
{
    ColumnMismatch shown = mismatch;
    if (shown.kind == ColumnMismatch::Kind::Type) {
        shown.first.swap(shown.found);
    }
    return fail(textOf(shown, u"DBF"_s, u"ReadXBF"_s));
}

} // namespace corvanta
