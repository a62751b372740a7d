#include "Bare.h"
#include "BigMailbox.h"
#include "Pairs.h"
#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "mailbox/FaxListQueries.h"
#include "mailbox/ShownMailbox.h"

#include <QCoreApplication>

#include <memory>

// The mailbox without its windows, on folders of 100,000 faxes, against the same statements in bare SQLite.

namespace {

/// A profile with a big mailbox and the mailbox's logic on it.
struct Office
{
    explicit Office(int faxes = BigMailbox::lFaxes, int folders = 0)
    {
        BigMailbox::Fill(faxes);
        BigMailbox::AddFolders(folders);
        mailbox.LoadFaxFolderTree();
    }

    void Load(const char *folder, int mode, bool clearFirst)
    {
        mailbox.LoadGridItem(folder, mode, {}, false, clearFirst);
    }

    Profile profile;
    FakePorts ports;
    ShownMailbox mailbox{ports.message, ports.clock, ports.ids};
};

/// One for all benchmarks that leave it as it was.
Office &SharedOffice()
{
    static Office office;
    return office;
}

QByteArray FolderSql(const char *folder, int mode, const QString &listed)
{
    return FaxListQueries::ForFolder({folder, mode, {}, false, listed, {}}).first().strSql.toUtf8();
}

void LoadFolder(benchmark::State &state, const char *folder, int mode, bool clearFirst)
{
    Office &office = SharedOffice();
    const Bare bare(Global().strDataBasePath);
    office.mailbox.SelectFolder(folder);
    const QByteArray sql =
        FolderSql(folder, mode, clearFirst ? QString() : office.mailbox.List().QuotedIds());
    Pairs pairs;
    for (auto _ : state) {
        const double measure = Pairs::TimeOf([&] { bare.Read(sql); });
        const double own = Pairs::TimeOf([&] { office.Load(folder, mode, clearFirst); });
        pairs.Add(measure, own);
        state.SetIterationTime(own / 1000);
    }
    if (office.mailbox.RowCount() != BigMailbox::lFaxes)
        state.SkipWithError("The folder was not loaded.");
    pairs.Report(state);
}
BENCHMARK_CAPTURE(LoadFolder, received, BigMailbox::strReceivedFolder, 2, true)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);
BENCHMARK_CAPTURE(LoadFolder, sent, BigMailbox::strSentFolder, 6, true)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);
BENCHMARK_CAPTURE(LoadFolder, receivedNothingNew, BigMailbox::strReceivedFolder, 2, false)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);
BENCHMARK_CAPTURE(LoadFolder, sentNothingNew, BigMailbox::strSentFolder, 6, false)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);

/// Against one reading of what a count needs of each row, by folder.
void Recount(benchmark::State &state)
{
    Office &office = SharedOffice();
    const Bare bare(Global().strDataBasePath);
    office.mailbox.SelectFolder(BigMailbox::strReceivedFolder);
    Pairs pairs;
    for (auto _ : state) {
        const double measure = Pairs::TimeOf([&] {
            bare.Read("Select FolderID,RecyleID,isReaded From ReceiveFax");
            bare.Read("Select FolderID,RecyleID,isReaded From SendFax");
        });
        const double own = Pairs::TimeOf([&] { office.mailbox.RefreshFolderUnreadCounts(); });
        pairs.Add(measure, own);
        state.SetIterationTime(own / 1000);
    }
    pairs.Report(state);
}
BENCHMARK(Recount)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
