#include "BigMailbox.h"
#include "Measures.h"
#include "Pairs.h"
#include "core/Globals.h"
#include "core/ModelRoles.h"
#include "core/Schema.h"
#include "desktop/forms/frmMain.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "mailbox/ShownMailbox.h"
#include "platform/SystemPorts.h"
#include "programs/client/ClientProgram.h"

#include <QApplication>
#include <QHeaderView>
#include <QProcess>
#include <QScrollBar>
#include <QTreeView>

#include <cstdio>
#include <random>

// The mailbox on the screen, with folders of 100,000 faxes. Times are those of the processor unless they are
// called "wall". To run it without a display: QT_QPA_PLATFORM=offscreen.

namespace {

constexpr int lFrames = 1000;

template <typename Widget>
Widget *FindInWindow(const QString &name)
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *found = window->findChild<Widget *>(name))
            return found;
    }
    qFatal("There is no %s.", qPrintable(name));
}

/// Selects a folder as a click does.
void Choose(const QString &folder)
{
    auto *tree = FindInWindow<QTreeView>("tvFolder");
    const QModelIndex root = tree->model()->index(0, 0);
    tree->setCurrentIndex(
        tree->model()->match(root, KeyRole, folder, 1, Qt::MatchExactly | Qt::MatchRecursive).value(0));
}

/// Waits until the list has been painted; what the window system does with it is not in the time.
class PaintWatch final : public QObject
{
public:
    explicit PaintWatch(QWidget *watched) { watched->installEventFilter(this); }

    void Wait()
    {
        bPainted = false;
        while (!bPainted)
            QApplication::processEvents();
    }

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        bPainted = bPainted || event->type() == QEvent::Paint;
        return false;
    }

    bool bPainted = false;
};

/// The main window over a profile with a big mailbox.
struct ShownOffice
{
    explicit ShownOffice(int faxes = BigMailbox::lFaxes)
    {
        BigMailbox::Fill(faxes);
        window.resize(1920, 1080);
        window.Load();
        QApplication::processEvents();
    }

    QTreeView *Grid() { return FindInWindow<QTreeView>("grdFaxList"); }

    Profile profile;
    FakePorts ports;
    ShownMailbox mailbox{ports.message, ports.clock, ports.ids};
    frmMain window{mailbox, ports.message};
};

/// From the selection of the folder to the painted list.
void FirstRows(benchmark::State &state, const char *folder)
{
    ShownOffice office;
    PaintWatch watch(office.Grid()->viewport());
    std::vector<double> times;
    for (auto _ : state) {
        Choose("1000");
        QApplication::processEvents();
        const double wall = Measures::WallTimeOf([&] {
            times.push_back(Pairs::TimeOf([&] {
                Choose(folder);
                watch.Wait();
            }));
        });
        state.SetIterationTime(wall / 1000);
    }
    if (office.Grid()->model()->rowCount() != BigMailbox::lFaxes)
        state.SkipWithError("The folder is not shown.");
    state.counters["cpu_ms"] = Pairs::Median(times);
}
BENCHMARK_CAPTURE(FirstRows, received, BigMailbox::strReceivedFolder)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);
BENCHMARK_CAPTURE(FirstRows, sent, BigMailbox::strSentFolder)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);

/// Frames at places far apart, so that every row is a new one, with the window as it opens or with the list
/// over the whole height of the screen.
void ScrolledFrame(benchmark::State &state, bool withPreview)
{
    ShownOffice office;
    Choose(BigMailbox::strReceivedFolder);
    FindInWindow<QWidget>("picPreview")->setVisible(withPreview);
    QApplication::processEvents();
    QScrollBar *bar = office.Grid()->verticalScrollBar();
    std::mt19937 random{1};
    std::vector<double> times;
    std::vector<double> walls;
    for (auto _ : state) {
        const int place = static_cast<int>(random() % static_cast<unsigned>(bar->maximum()));
        walls.push_back(Measures::WallTimeOf([&] {
            times.push_back(Pairs::TimeOf([&] {
                bar->setValue(place);
                office.Grid()->viewport()->repaint();
            }));
        }));
        state.SetIterationTime(walls.back() / 1000);
    }
    const int rowHeight = office.Grid()->visualRect(office.Grid()->indexAt({0, 0})).height();
    state.counters["rows"] = office.Grid()->viewport()->height() / rowHeight;
    state.counters["median_ms"] = Pairs::Median(times);
    state.counters["p99_ms"] = Measures::NinetyNinth(times);
    state.counters["p99_wall_ms"] = Measures::NinetyNinth(walls);
}
BENCHMARK_CAPTURE(ScrolledFrame, asOpened, true)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(lFrames);
BENCHMARK_CAPTURE(ScrolledFrame, listOnly, false)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(lFrames);

void SelectUpTo(QTreeView *grid, int row)
{
    const QAbstractItemModel *model = grid->model();
    const QItemSelection rows(model->index(0, 0), model->index(row - 1, model->columnCount() - 1));
    grid->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
}

/// What is done to many rows at once, in milliseconds until the list has been painted again. A figure that
/// more than doubles with the rows tells of a cost that grows with their square.
void ManyRows(benchmark::State &state)
{
    const int faxes = static_cast<int>(state.range(0));
    ShownOffice office(faxes);
    Choose(BigMailbox::strReceivedFolder);
    QApplication::processEvents();
    QTreeView *grid = office.Grid();
    office.ports.prompts.aAnswers = {mbAnswerYes};
    const auto measure = [&](const char *name, const std::function<void()> &run) {
        state.counters[name] = Pairs::TimeOf([&] {
            run();
            QApplication::processEvents();
            grid->viewport()->repaint();
        });
    };
    for (auto _ : state) {
        measure("frame", [] {});
        measure("select_all", [&] { grid->selectAll(); });
        measure("sort_all", [&] { emit grid->header()->sectionClicked(3); });
        SelectUpTo(grid, faxes / 2);
        measure("select_next", [&] { SelectUpTo(grid, faxes / 2 + 1); });
        const QStringList ids = office.mailbox.SelectedFaxes();
        measure("sort_half", [&] { emit grid->header()->sectionClicked(7); });
        measure("frame_of_half", [] {});
        measure("delete_half", [&] { office.mailbox.DeleteSpecItemFromGrid(ids, true); });
    }
}
BENCHMARK(ManyRows)->Arg(25000)->Arg(50000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

// Memory

/// The program itself on a profile that is there: opens both folders and prints what memory it takes.
int PrintMemory(int &argc, char **argv)
{
    QApplication application(argc, argv);
    SystemPorts system;
    if (!OpenClientDatabase(argv[2]))
        return 1;
    ClientProgram program(system.Get(), system.Pump());
    program.ShowMainWindow();
    QApplication::processEvents();
    std::printf("%g ", Measures::MemoryOf("VmRSS"));
    for (const char *folder : {BigMailbox::strReceivedFolder, BigMailbox::strSentFolder}) {
        Choose(folder);
        PaintWatch(FindInWindow<QTreeView>("grdFaxList")->viewport()).Wait();
        std::printf("%g %g ", Measures::MemoryOf("VmRSS"), Measures::MemoryOf("VmHWM"));
    }
    return 0;
}

/// In MiB: "empty" before a folder is opened, "open" with the folder open, "peak" the most until then.
void Memory(benchmark::State &state)
{
    const Profile profile;
    BigMailbox::Fill();
    for (auto _ : state) {
        QProcess process;
        process.start(QApplication::applicationFilePath(), {"--memory", Global().strDataBasePath});
        process.waitForFinished(-1);
        const QList<QByteArray> values = process.readAllStandardOutput().split(' ');
        if (process.exitCode() != 0 || values.size() < 5) {
            state.SkipWithError("The program did not open the folder.");
            return;
        }
        int place = 0;
        for (const char *name : {"empty", "received_open", "received_peak", "sent_open", "sent_peak"})
            state.counters[name] = values.at(place++).toDouble();
    }
}
BENCHMARK(Memory)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char *argv[])
{
    if (argc > 2 && qstrcmp(argv[1], "--memory") == 0)
        return PrintMemory(argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
