#include "LetterFax.h"
#include "Pairs.h"
#include "controls/PageCanvas.h"
#include "core/Globals.h"
#include "fakes/FakePorts.h"
#include "fixtures/Profile.h"
#include "mailbox/ShownMailbox.h"
#include "mailbox/forms/PreviewPane.h"

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include <FreeImage.h>
#include <benchmark/benchmark.h>
#include <tiffio.h>

// The next page of a fax in the preview, from the key to the painted page, against the least that showing it
// takes: FreeImage opens the file and decodes the page, and one painter scales it to the same width. The
// painter of the comparison ("bare") leaves pixels out, as the preview does not; one that averages them as
// well is told besides ("smooth"). All work on the fax's own pages, which are full of text.

namespace {

constexpr int lPages = 20, lPaneWidth = 800, lPaneHeight = 600;

/// Notes when its widget has been painted.
class PaintWatch final : public QObject
{
public:
    bool bPainted = false;

private:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() != QEvent::Paint)
            return false;
        object->removeEventFilter(this);
        QCoreApplication::sendEvent(object, event);
        object->installEventFilter(this);
        bPainted = true;
        return true;
    }
};

/// The preview pane in a window of its own, on a fax of many pages.
struct ShownFax
{
    ShownFax()
        : mailbox(fakes.message, fakes.clock, fakes.ids)
        , pane(mailbox)
    {
        if (!LetterFax::Write(strFile, lPages))
            qFatal("The fax could not be written.");
        profile.InsertReceivedFax("A", {{"fileName", "A.tif"}});
        mailbox.LoadFaxFolderTree();
        mailbox.SelectFolder("1001");
        pane.resize(lPaneWidth, lPaneHeight);
        pane.show();
        pane.activateWindow();
        pane.Canvas().setFocus();
        if (!QTest::qWaitForWindowActive(&pane))
            qFatal("The window does not become active.");
        pane.Canvas().viewport()->installEventFilter(&watch);
    }

    /// From a key of the preview to the end of its painting.
    void PressKey(Qt::Key key)
    {
        watch.bPainted = false;
        QTest::keyClick(&pane.Canvas(), key, Qt::AltModifier);
        while (!watch.bPainted)
            QCoreApplication::processEvents();
    }

    Profile profile;
    const QString strFile = Global().strInputBoxPath + "A.tif";
    FakePorts fakes;
    ShownMailbox mailbox;
    PreviewPane pane;
    PaintWatch watch;
};

/// One page by the two libraries alone.
void ShowByLibraries(const QString &file, int number, const QSize &view, bool isSmooth)
{
    QImage screen(view, QImage::Format_RGB32);
    FIMULTIBITMAP *fax = FreeImage_OpenMultiBitmap(FIF_TIFF, QFile::encodeName(file).constData(), FALSE, TRUE,
                                                   FALSE, TIFF_DEFAULT);
    FIBITMAP *page = FreeImage_LockPage(fax, number);
    FreeImage_FlipVertical(page);
    QImage picture(FreeImage_GetBits(page), static_cast<int>(FreeImage_GetWidth(page)),
                   static_cast<int>(FreeImage_GetHeight(page)), static_cast<int>(FreeImage_GetPitch(page)),
                   QImage::Format_Mono);
    picture.setColorTable({0xff000000, 0xffffffff});
    QPainter painter(&screen);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, isSmooth);
    const double visible = double(view.height()) * picture.width() / view.width();
    painter.drawImage(QRectF(screen.rect()), picture, QRectF(0, 0, picture.width(), visible));
    painter.end();
    FreeImage_UnlockPage(fax, page, FALSE);
    FreeImage_CloseMultiBitmap(fax, 0);
}

/// Page by page in turn. The time told is the clock's; the ratios are those of the processor's time.
void NextPage(benchmark::State &state)
{
    ShownFax fax;
    const QSize view = fax.pane.Canvas().viewport()->size();
    Pairs pairs;
    std::vector<double> clock, smooth;
    for (auto _ : state) {
        if (!fax.mailbox.Preview().CanGoForward())
            fax.PressKey(Qt::Key_Home);
        const int number = fax.mailbox.Preview().PreviewPage() + 1;
        const auto start = std::chrono::steady_clock::now();
        const double own = Pairs::TimeOf([&] { fax.PressKey(Qt::Key_Down); });
        clock.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        if (fax.mailbox.Preview().PreviewPage() != number || !fax.mailbox.Preview().HasImage())
            state.SkipWithError("The key has not shown the next page.");
        pairs.Add(Pairs::TimeOf([&] { ShowByLibraries(fax.strFile, number, view, false); }), own);
        smooth.push_back(Pairs::TimeOf([&] { ShowByLibraries(fax.strFile, number, view, true); }));
        state.SetIterationTime(clock.back());
    }
    pairs.Report(state);
    state.counters["smooth_ms"] = Pairs::Median(smooth);
    state.counters["worst_ms"] = *std::max_element(clock.begin(), clock.end()) * 1000;
}
BENCHMARK(NextPage)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200)->Repetitions(3);

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
