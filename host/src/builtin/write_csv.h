// host/src/builtin/write_csv.h
// writeCSV: rows into a text file with separators; the form of --tap too.
#pragma once
#include "corvanta/action_base.h"
#include "corvanta/target_file.h"

#include <vector>

namespace corvanta {

struct WriteCsvParams
{
    QString fileName;
    QString separator = QStringLiteral(",");
    bool header = true;
};

class ActionWriteCsv final : public ParamAction<ActionWriteCsv, WriteCsvParams>
{
public:
    ActionWriteCsv(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteCsvParams> &paramTable();

private:
    void start() override;
    bool step() override;
    void finish() override;

    bool open();
    bool writeHeader(const OneRow *columns);
    bool writeRow(const OneRow *row);
    bool putText(const char16_t *units, qsizetype n);
    bool needRoom(size_t bytes);
    bool flush();

    QString m_name;
    char m_separator = ',';
    TargetFile m_target;
    std::vector<char> m_buffer;
    size_t m_used = 0;
    bool m_headerDone = false;
    bool m_complete = false;
};

} // namespace corvanta
