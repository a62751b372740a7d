#include "controls/Icons.h"
#include "core/Message.h"
#include "core/ProgramTitle.h"
#include "core/RaisedError.h"
#include "core/Startup.h"
#include "platform/CloseSignals.h"
#include "platform/SystemPorts.h"
#include "programs/client/ClientProgram.h"

#include <QApplication>

namespace {

int RunClient(SystemPorts &system, const QStringList &arguments)
{
    if (Startup::Run(system.Get(), Startup::CommandLine(arguments)) != Startup::Result::ShowLogin)
        return 0;
    ClientProgram program(system.Get(), system.Pump());
    CloseSignals closeSignals;
    QObject::connect(&closeSignals, &CloseSignals::CloseRequested, &program, &ClientProgram::Close);
    program.ShowLogin();
    return system.Pump().Run();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QString::fromLatin1(programTitle));
    QApplication::setApplicationVersion(QStringLiteral(VELMAR_VERSION));
    QApplication::setWindowIcon(Icons::Get(QStringLiteral("imgProgram")));
    QApplication::setQuitOnLastWindowClosed(false); // the main window may be hidden while boxes come and go

    SystemPorts system;
    try {
        return RunClient(system, application.arguments().mid(1));
    } catch (const RaisedError &error) {
        system.Get().message.ShowMessage(error.Description(), mbCritical);
        return 1;
    }
}
