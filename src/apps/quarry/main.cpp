#include "apps/RegexMessages.h"
#include "apps/quarry/CommandLine.h"
#include "platform/SystemLog.h"

/// `quarry`: the command line.
int main(int argc, char** argv)
{
    using namespace quarry;
    // Commands say themselves what went wrong; the engine's log lines would say it twice.
    if (qEnvironmentVariableIsEmpty("QUARRY_DEBUG"))
        setSystemLogSink([](const QString&) {});
    localiseRegexMessages();

    CommandLine line(QStringLiteral(QUARRY_VERSION));
    addListCommands(line);
    addMakingCommands(line);
    addCombineCommand(line);
    addTreeCommands(line);
    addResultCommands(line);
    addItemCommands(line);
    addOfflineCommands(line);
    addRefreshCommand(line);
    addExportCommand(line);
    addImportCommand(line);
    addAgentCommands(line);
    addSettingsCommands(line);
    addScheduleCommand(line);
    addServicesCommand(line);
    addBlacklistCommands(line);
    addUpdateCommand(line);
    addLogCommand(line);
    return line.run(argc, argv);
}
