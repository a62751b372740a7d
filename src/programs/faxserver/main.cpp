#include "CommandLine.h"
#include "Delivery.h"
#include "FaxServer.h"
#include "ServerError.h"
#include "StopSignals.h"
#include "Store.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

int Serve(Store &store, const ServerSettings &settings)
{
    StopSignals signalsToEnd;
    FaxServer server(store, settings);
    std::printf("listening on 127.0.0.1:%d\n", int(server.Listen()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

void AddUser(Store &store, const CommandLine &line)
{
    store.accounts.Save(
        {{}, line.strLogin, line.strLogin, {}, Accounts::DigestOf(line.strPassword), line.bLock});
}

int Run(const CommandLine &line)
{
    Store store(line.strDataFolder);
    switch (line.task) {
    case CommandLine::taskAddUser:
        AddUser(store, line);
        return 0;
    case CommandLine::taskDeliver:
        Delivery::Deliver(store, line.strLogin, line.aFiles, line.lCopies);
        return 0;
    case CommandLine::taskServe:
        break;
    }
    return Serve(store, line.settings);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("VelmarFaxServer");
    QCoreApplication::setApplicationVersion("1.0.0");
    try {
        return Run(CommandLine::Read(application.arguments()));
    } catch (const ServerError &error) {
        std::fprintf(stderr, "VelmarFaxServer: %s\n", error.what());
        return 1;
    }
}
