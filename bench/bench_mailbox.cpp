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

/// "ratio_tuned" is against SQLite on a connection with the program's settings, which the program has made
/// for these lists.
void LoadFolder(benchmark::State &state, const char *folder, int mode, bool clearFirst)
{
    Office &office = SharedOffice();
    const Bare bare(Global().strDataBasePath);
    const Bare tuned(Global().strDataBasePath, Bare::AsProgram);
    office.mailbox.SelectFolder(folder);
    const QByteArray sql =
        FolderSql(folder, mode, clearFirst ? QString() : office.mailbox.List().QuotedIds());
    Pairs pairs;
    Pairs tunedPairs;
    for (auto _ : state) {
        const double measure = Pairs::TimeOf([&] { bare.Read(sql); });
        const double own = Pairs::TimeOf([&] { office.Load(folder, mode, clearFirst); });
        pairs.Add(measure, own);
        tunedPairs.Add(Pairs::TimeOf([&] { tuned.Read(sql); }), own);
        state.SetIterationTime(own / 1000);
    }
    if (office.mailbox.RowCount() != BigMailbox::lFaxes)
        state.SkipWithError("The folder was not loaded.");
    pairs.Report(state);
    state.counters["ratio_tuned"] = tunedPairs.Ratio();
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

/// What is done to all rows, in nanoseconds for each: a figure that grows with the rows tells of a cost that
/// grows with their square.
void PerRow(benchmark::State &state)
{
    const int faxes = static_cast<int>(state.range(0));
    Office office(faxes);
    ShownMailbox &mailbox = office.mailbox;
    mailbox.SelectFolder(BigMailbox::strReceivedFolder);
    office.ports.prompts.aAnswers = {mbAnswerYes};
    const auto measure = [&](const char *name, const std::function<void()> &run) {
        state.counters[name] = Pairs::TimeOf(run) * 1e6 / faxes;
    };
    for (auto _ : state) {
        for (const auto &[name, column] : {std::pair("sort_words", 4), {"sort_pages", 7}, {"sort_times", 8}})
            measure(name, [&mailbox, column = column] { mailbox.List().SortBy(column); });
        const QStringList ids = Profile::Values("Select Fax_ID From ReceiveFax");
        measure("select_all", [&] { mailbox.SelectFaxes(ids, ids.first()); });
        measure("selected_ids", [&] { mailbox.GetGridSelectedID(); });
        measure("had_read", [&] { mailbox.Marks().mnuHadRead(); });
        measure("un_read", [&] { mailbox.Marks().mnuUnRead(); });
        measure("change_row", [&] {
            for (int row = 1; row <= faxes; row += 100)
                mailbox.ChangeRowText(row, mailbox.List().Row(row).ID(), 2);
        });
        QStringList half;
        for (int i = 0; i < faxes; i += 2)
            half.append(ids.at(i));
        measure("delete_half", [&] { mailbox.DeleteSpecItemFromGrid(half, true); });
        measure("delete_some", [&] {
            for (int i = 1; i < faxes; i += 1000)
                mailbox.DeleteSpecItemFromGrid(ids.at(i), false);
        });
    }
    if (mailbox.RowCount() != faxes / 2 - faxes / 1000)
        state.SkipWithError("Rows were not deleted.");
}
BENCHMARK(PerRow)->Arg(25000)->Arg(50000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

/// All counts change at each turn.
void ManyFolders(benchmark::State &state)
{
    const int folders = static_cast<int>(state.range(0));
    Office office(folders, folders);
    Global().objDB->Execute("Update ReceiveFax Set isReaded=0,FolderID='F'||(rowid-1)");
    int turn = 0;
    for (auto _ : state) {
        office.mailbox.RefreshFolderUnreadCounts();
        state.PauseTiming();
        Global().objDB->Execute("Update ReceiveFax Set isReaded=" + QString::number(++turn % 2));
        state.ResumeTiming();
    }
}
BENCHMARK(ManyFolders)->Arg(2500)->Arg(5000)->Arg(10000)->Iterations(20)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
