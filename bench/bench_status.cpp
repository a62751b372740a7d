// The states of a thousand faxes in flight, in a mailbox of 100,000 sent ones: from the reply's arrival to
// the committed rows, the list and the counts. Then the same statements in other ways.

#include "BigMailbox.h"
#include "core/Globals.h"
#include "fixtures/SessionBench.h"
#include "mailbox/ShownMailbox.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <benchmark/benchmark.h>

namespace {

constexpr int lSending = 1000;
constexpr int lStatements = 20;

QByteArray IdOf(int number)
{
    return QByteArray::number(number).rightJustified(32, '0');
}

void PutIntoSending()
{
    Profile::Execute("Update SendFax Set FolderID='1005',Result='Sending',ResultDetailed='' Where "
                     "user_ID='flight'");
}

/// A hundred thousand faxes in "Sent" and a thousand in "Sending".
void FillMailbox()
{
    BigMailbox::Fill();
    Profile::Execute("Begin");
    for (int i = 0; i < lSending; ++i) {
        Profile::Execute("Insert Into SendFax(Fax_ID,FolderID,RecyleID,user_ID,title,fileName,SendTime,"
                         "ModifyTime,isReaded) Values('" +
                         IdOf(i) + "','1005','','flight','A fax of the office','" + IdOf(i) +
                         ".tif','2024-01-31 09:00:00','2024-01-31 09:00:00','1')");
    }
    Profile::Execute("Commit");
}

QByteArray Reply(int status)
{
    QByteArray reply = "OK\r\n";
    for (int i = 0; i < lSending; ++i) {
        reply += IdOf(i) + '\0' + QByteArray::number(status) +
                 QByteArray("\0002024-01-31 09:05:00\0[17];[18];\0004;4;1;\0+44 20 7946 0018;\0", 57) +
                 "\r\n";
    }
    return reply;
}

/// `status` 1 in progress, 3 unchanged, 4 delivered; `folder` is the open one.
void ApplyStates(benchmark::State &state)
{
    SessionBench bench;
    ShownMailbox mailbox(bench.ports.message, bench.ports.clock, bench.ports.ids);
    FaxStatus faxes(bench.ports.ports, {bench.session, bench.progress, bench.desktop.mainWindow, mailbox});
    FillMailbox();
    mailbox.LoadFaxFolderTree();
    const QByteArray reply = Reply(static_cast<int>(state.range(0)));
    QElapsedTimer since;
    for ([[maybe_unused]] auto step : state) {
        PutIntoSending();
        mailbox.SelectFolder(QString::number(state.range(1)));
        bench.ports.pump.Then([&] {
            since.start();
            bench.Socket().FeedLong(reply);
        });
        faxes.CheckFaxState(false);
        state.SetIterationTime(static_cast<double>(since.nsecsElapsed()) / 1e9);
        bench.Socket().aWrites.clear();
    }
    if (!bench.ports.prompts.aBoxes.isEmpty())
        state.SkipWithError("a box");
}
BENCHMARK(ApplyStates)
    ->ArgNames({"status", "folder"})
    ->ArgsProduct({{3, 1, 4}, {1001, 1005, 1006}})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

/// Twenty statements by id in a transaction; with an index as the table does not have it.
void UpdateByID(benchmark::State &state)
{
    const Profile profile;
    FillMailbox();
    if (state.range(0) != 0)
        Profile::Execute("Create Index byID On SendFax(Fax_ID)");
    for ([[maybe_unused]] auto step : state) {
        PutIntoSending();
        QElapsedTimer since;
        since.start();
        Profile::Execute("Begin");
        for (int i = 0; i < lStatements; ++i)
            Profile::Execute("Update SendFax Set Result='Sucessfully', FolderID='1006', "
                             "EndTime='2024-01-31 09:05:00' ,ResultDetailed='' Where Fax_ID='" +
                             IdOf(i) + "'");
        Profile::Execute("Commit");
        state.SetIterationTime(static_cast<double>(since.nsecsElapsed()) / 1e9);
    }
}
BENCHMARK(UpdateByID)
    ->ArgName("index")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
