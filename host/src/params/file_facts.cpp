#include "corvanta/params/file_facts.h"

namespace corvanta {

FileFacts::~FileFacts() = default;

Result<RowBlocks, QString> FileFacts::rowBlocks()
{
    return Fault{QStringLiteral("its format has no blocks of rows")};
}

QString FileFacts::reasonToDecode()
{
    return {};
}

} // namespace corvanta
