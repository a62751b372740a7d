#include "CommandLine.h"
#include "Delivery.h"
#include "DemoOffice.h"
#include "FaxServer.h"
#include "ServerError.h"
#include "StopSignals.h"
#include "Store.h"
#include "Upload.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLockFile>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

int Serve(Store &store, const CommandLine &line)
{
    QLockFile lock(QDir(line.strDataFolder).filePath("faxserver.lock"));
    lock.setStaleLockTime(0);
    if (!lock.tryLock()) // two would dial the same numbers
        throw ServerError(QString("Another server serves the data folder %1.").arg(line.strDataFolder));
    Upload::RemoveLeftovers(store);
    StopSignals signalsToEnd;
    FaxServer server(store, line.settings);
    std::printf("listening on 127.0.0.1:%d\n", int(server.Listen()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

void AddUser(Store &store, const CommandLine &line)
{
    Account account =
        store.accounts.Find(line.strLogin).value_or(Account{{}, line.strLogin, line.strLogin, {}, {}, false});
    account.strDigest = Accounts::DigestOf(line.strPassword);
    account.bLocked = line.bLock;
    if (!line.strFullName.isEmpty())
        account.strName = line.strFullName;
    if (!line.strDepartment.isEmpty())
        account.strDepartment = line.strDepartment;
    store.accounts.Save(account);
}

void Publish(Store &store, const CommandLine &line)
{
    QFile file(line.aFiles.first());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw ServerError(
            QString("The file %1 cannot be read: %2.").arg(file.fileName(), file.errorString()));
    QList<QStringList> rows;
    for (const QString &row : QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts))
        rows.append(row.split('\t'));
    store.addresses.Replace(line.list, rows);
}

int Run(const CommandLine &line)
{
    Store store(line.strDataFolder);
    if (line.bSeedDemo)
        DemoOffice::Seed(store);
    switch (line.task) {
    case CommandLine::taskAddUser:
        AddUser(store, line);
        return 0;
    case CommandLine::taskDeliver:
        Delivery::Deliver(store, line.strLogin.split(','), line.aFiles, line.lCopies);
        return 0;
    case CommandLine::taskPublish:
        Publish(store, line);
        return 0;
    case CommandLine::taskServe:
        break;
    }
    return Serve(store, line);
}

/// Only painting needs more than the core, and no screen even then.
std::unique_ptr<QCoreApplication> MakeApplication(int &argc, char *argv[])
{
    const bool isPainting = std::any_of(
        argv + 1, argv + argc, [](const char *word) { return QByteArrayView(word).startsWith("--seed"); });
    if (!isPainting)
        return std::make_unique<QCoreApplication>(argc, argv);
    StopSignals::Block(); // this application has threads
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

} // namespace

int main(int argc, char *argv[])
{
    const std::unique_ptr<QCoreApplication> application = MakeApplication(argc, argv);
    QCoreApplication::setApplicationName("VelmarFaxServer");
    QCoreApplication::setApplicationVersion("1.0.0");
    try {
        return Run(CommandLine::Read(application->arguments()));
    } catch (const ServerError &error) {
        std::fprintf(stderr, "VelmarFaxServer: %s\n", error.what());
        return 1;
    }
}
