#include "system/ToolProcess.h"

#include <QProcess>

namespace ToolProcess {

void prepare(QProcess &) { }

void kill(QProcess &process)
{
    process.kill();
}

} // namespace ToolProcess
