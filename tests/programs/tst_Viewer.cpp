#include "fixtures/FaxFile.h"
#include "fixtures/Ink.h"
#include "fixtures/Profile.h"
#include "programs/viewer/FaxDocument.h"
#include "programs/viewer/PageImages.h"
#include "programs/viewer/PageRenderer.h"
#include "programs/viewer/PageStack.h"
#include "programs/viewer/PagesView.h"
#include "programs/viewer/ThumbnailPane.h"
#include "programs/viewer/ViewerCommandLine.h"
#include "programs/viewer/ViewerWindow.h"

#include <QComboBox>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPointingDevice>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>
#include <QWheelEvent>

#include <memory>

class tst_Viewer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(folder.isValid());
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.filePath("config")));
    }

    void init()
    {
        QDir(folder.filePath("config")).removeRecursively();
        MakeWindow();
    }

    void cleanup() { window.reset(); }

    void pagesLieBelowEachOther()
    {
        PageStack stack;
        stack.SetPages({{100, 200}, {60, 50}, {100, 100}});
        const double margin = PageStack::Margin;
        QCOMPARE(stack.Place(1), QRectF(margin + 20, 200 + 2 * margin, 60, 50));
        QCOMPARE(stack.Size(), QSizeF(100 + 2 * margin, 350 + 4 * margin));
        QCOMPARE(stack.Largest(), QSizeF(100 + 2 * margin, 200 + 2 * margin));
        const PageStack::Range range = stack.PagesBetween(210, 2000);
        QCOMPARE(range.lFirst, 1);
        QCOMPARE(range.lLast, 2);
        const PageStack::Range gap = stack.PagesBetween(margin + 201, margin + 202);
        QVERIFY(gap.lLast < gap.lFirst);
    }

    /// Parts of a page that are turned one by one make the page that the document turns as a whole.
    void turnedPartsLookLikeTurnedPages()
    {
        FaxDocument document;
        QVERIFY(document.Open(Write({.lWidth = 200, .lHeight = 160})));
        PageRenderer renderer;
        renderer.SetPages(document.Pages());
        const QSignalSpy rendered(&renderer, &PageRenderer::Rendered);
        for (const int rotation : {0, 90, 180, 270}) {
            const QSize size = rotation % 180 == 0 ? QSize(200, 160) : QSize(160, 200);
            const QList<QRect> halves{{0, 0, size.width(), 90}, {0, 90, size.width(), size.height() - 90}};
            const auto before = rendered.size();
            renderer.Want(PageRenderer::Shown,
                          {{0, rotation, size, halves[0]}, {0, rotation, size, halves[1]}});
            QTRY_COMPARE(rendered.size(), before + 2);
            const QImage page =
                PageImages::FromBits(document.LoadPage(0)).convertToFormat(QImage::Format_RGB32);
            QCOMPARE(page.size(), size);
            for (int half = 0; half < 2; ++half)
                QCOMPARE(rendered[before + half][1].value<QImage>().convertToFormat(QImage::Format_RGB32),
                         page.copy(halves[half]));
            document.Rotate(0, 90);
        }
    }

    void onlyTheLatestWishesAreDrawn()
    {
        PageRenderer renderer;
        renderer.SetPages(FaxPages(Write({.lPages = 60})));
        const QSignalSpy rendered(&renderer, &PageRenderer::Rendered);
        const auto wish = [](int page) { return PagePart{page, 0, {50, 70}, {0, 0, 50, 70}}; };
        QList<PagePart> many;
        for (int page = 0; page < 59; ++page)
            many.append(wish(page));
        renderer.Want(PageRenderer::Ahead, many);
        renderer.Want(PageRenderer::Ahead, {});
        renderer.Want(PageRenderer::Shown, {wish(59)});
        QTRY_VERIFY(!rendered.isEmpty() && rendered.last()[0].value<PagePart>() == wish(59));
        QVERIFY(rendered.size() < 30);
        renderer.Want(PageRenderer::Shown, {wish(0)});
        renderer.SetPages(FaxPages()); // another file: nothing of the old one comes any more
        const auto before = rendered.size();
        QTest::qWait(50);
        QCOMPARE(rendered.size(), before);
    }

    void standardPageHasItsTrueProportions()
    {
        Show({.lPages = 3});
        const double zoom = View().Zoom() * View().logicalDpiX();
        const int betweenBoxes = static_cast<int>(88 / 204.0 * zoom + PageStack::Margin * View().Zoom());
        const QRect box = FindInk(Shot(), {0, 2, betweenBoxes, 80});
        QVERIFY(qAbs(box.width() - 64 / 204.0 * zoom) <= 2);
        QVERIFY(qAbs(box.height() - 16 / 98.0 * zoom) <= 2);
    }

    void keysGoThroughThePages()
    {
        Show({.lPages = 12});
        QCOMPARE(View().CurrentPage(), 0);
        const QImage first = Shot();
        Press(Qt::Key_PageDown);
        const double down = View().OffsetY();
        QVERIFY(down > 300);
        Press(Qt::Key_Space, Qt::ShiftModifier);
        QCOMPARE(View().OffsetY(), 0.0);
        Press(Qt::Key_PageDown, Qt::ControlModifier);
        QCOMPARE(View().CurrentPage(), 1);
        Press(Qt::Key_Right); // nothing to scroll sideways
        QCOMPARE(View().CurrentPage(), 2);
        QTRY_VERIFY(View().IsComplete());
        QVERIFY(Shot() != first); // the second box lies lower on each page
        Press(Qt::Key_End);
        QCOMPARE(View().CurrentPage(), 11);
        Press(Qt::Key_Home);
        QCOMPARE(View().OffsetY(), 0.0);
        Press(Qt::Key_F);
        Press(Qt::Key_PageDown);
        Press(Qt::Key_PageDown);
        QCOMPARE(View().CurrentPage(), 2); // a whole page at a time
        QVERIFY(View().accessibleDescription().contains("3"));
    }

    void pageBoxAndThumbnailsGoToPages()
    {
        Show({.lPages = 40});
        auto *box = window->findChild<QLineEdit *>("txtPage");
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, "31");
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(View().CurrentPage(), 30);
        QVERIFY(View().hasFocus());
        Press(Qt::Key_F9);
        auto *thumbnails = window->findChild<ThumbnailPane *>();
        QVERIFY(thumbnails->isVisible());
        QCOMPARE(thumbnails->currentIndex().row(), 30);
        const auto above = thumbnails->model()->index(29, 0);
        thumbnails->scrollTo(above);
        QTest::mouseClick(thumbnails->viewport(), Qt::LeftButton, {}, thumbnails->visualRect(above).center());
        QCOMPARE(View().CurrentPage(), 29);
        QTest::keyClick(thumbnails, Qt::Key_Up);
        QCOMPARE(View().CurrentPage(), 28);
        QCOMPARE(box->text(), "29");
        const auto inkOf = [&] {
            const QRect cell = thumbnails->visualRect(thumbnails->currentIndex()).adjusted(10, 10, -10, -30);
            return FindInk(thumbnails->viewport()->grab().toImage(), cell);
        };
        QTRY_VERIFY(!inkOf().isEmpty()); // its picture has come
    }

    void zoomFitsAndFollowsTheWindow()
    {
        Show({.lPages = 3});
        const auto inches = [&] {
            return View().viewport()->width() / (View().Zoom() * View().logicalDpiX());
        };
        const double margins = 2 * PageStack::Margin / View().logicalDpiX();
        QVERIFY(qAbs(inches() - 1728 / 204.0 - margins) < 0.1);
        window->resize(1000, 600);
        QTRY_VERIFY(View().width() > 900);
        QVERIFY(qAbs(inches() - 1728 / 204.0 - margins) < 0.1);
        Press(Qt::Key_F);
        const double height = View().viewport()->height() / (View().Zoom() * View().logicalDpiX());
        QVERIFY(qAbs(height - 1146 / 98.0 - margins) < 0.1);
        Press(Qt::Key_0);
        QCOMPARE(View().Zoom(), 1.0);
        QVERIFY(!window->findChild<QAction *>("mnuFitPage")->isChecked());
        window->resize(800, 600);
        QCOMPARE(View().Zoom(), 1.0);
    }

    void wheelAndFingersZoomAroundTheirPlace()
    {
        Show({.lPages = 3});
        View().SetZoom(2.0);
        const QPointF place(200, 150);
        const auto inSheet = [&] {
            return (place + QPointF(View().OffsetX(), View().OffsetY())) / View().Zoom();
        };
        const QPointF before = inSheet();
        QWheelEvent turn(place, place, {}, {0, 120}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                         false);
        QCoreApplication::sendEvent(View().viewport(), &turn);
        QCOMPARE(View().Zoom(), 2.4);
        QVERIFY((inSheet() - before).manhattanLength() < 0.1);
        const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
        QWidget *viewport = View().viewport();
        const auto fingers = [&](int apart) {
            return std::pair(place.toPoint() - QPoint(apart, 0), place.toPoint() + QPoint(apart, 0));
        };
        QTest::touchEvent(viewport, screen.get())
            .press(0, fingers(50).first, viewport)
            .press(1, fingers(50).second, viewport);
        for (const int apart : {60, 80, 100})
            QTest::touchEvent(viewport, screen.get())
                .move(0, fingers(apart).first, viewport)
                .move(1, fingers(apart).second, viewport);
        QTest::touchEvent(viewport, screen.get())
            .release(0, fingers(100).first, viewport)
            .release(1, fingers(100).second, viewport);
        QVERIFY(View().Zoom() > 3.5);
        QVERIFY((inSheet() - before).manhattanLength() < 2);
    }

    void zoomIsTypedAndStepped()
    {
        Show({.lPages = 2});
        auto *box = window->findChild<QComboBox *>();
        const auto type = [&](const char *text) {
            box->lineEdit()->selectAll();
            QTest::keyClicks(box->lineEdit(), text);
            QTest::keyClick(box->lineEdit(), Qt::Key_Return);
        };
        type("140");
        QCOMPARE(View().Zoom(), 1.4);
        Press(Qt::Key_Plus);
        QCOMPARE(View().Zoom(), 1.5);
        QCOMPARE(box->currentText(), "150 %");
        Press(Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(View().Zoom(), 1.25);
        type("wide");
        QCOMPARE(View().Zoom(), 1.25);
        QCOMPARE(box->currentText(), "125 %");
    }

    void turnedPageStaysInSight()
    {
        Show({.lPages = 5});
        View().GoToPage(2);
        Press(Qt::Key_R);
        QCOMPARE(window->Document().Rotation(2), 90);
        QCOMPARE(window->Document().Rotation(1), 0);
        QCOMPARE(View().CurrentPage(), 2);
        QTRY_VERIFY(View().IsComplete());
        const QImage turned = Shot();
        const QRect box = FindInk(turned, {turned.width() / 2, 0, turned.width() / 2 - 9, 80});
        QVERIFY(box.height() > box.width()); // the corner box stands upright, top right
        Press(Qt::Key_R, Qt::ShiftModifier);
        Press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
        for (int page = 0; page < 5; ++page)
            QCOMPARE(window->Document().Rotation(page), 270);
        QCOMPARE(View().CurrentPage(), 2);
    }

    void vanishedFileKeepsItsLoadedPages()
    {
        Show({.lPages = 60});
        const QImage shown = Shot();
        QVERIFY(QFile::remove(window->Document().Path()));
        QTRY_VERIFY(NoticeText().contains("deleted"));
        const QRect upper(5, 5, 500, 300);
        QCOMPARE(Shot().copy(upper), shown.copy(upper));
        Press(Qt::Key_R); // needs the page anew
        Press(Qt::Key_R, Qt::ShiftModifier);
        QTRY_VERIFY(View().IsComplete());
        QCOMPARE(Shot().copy(upper), shown.copy(upper));
        Press(Qt::Key_End);
        QTRY_VERIFY(View().IsComplete());
        const QImage last = Shot();
        QVERIFY(FindInk(last, {0, 0, last.width() - 40, last.height()}).isEmpty()); // its boxes are not there
        const QImage blank = last.copy(last.width() / 2 - 60, 20, 120, 20);
        QVERIFY(last.copy(last.width() / 2 - 60, last.height() / 2 - 60, 120, 120) != blank);
    }

    void rewrittenFileIsShownAnew()
    {
        Show({.lPages = 6});
        View().GoToPage(3);
        QTRY_VERIFY(View().IsComplete());
        const QImage before = Shot();
        QVERIFY(!Write({.lPages = 8, .lHeight = 500}, "new.tif").isEmpty());
        QFile::remove(window->Document().Path());
        QVERIFY(QFile::rename(folder.filePath("new.tif"), window->Document().Path()));
        QTRY_COMPARE(window->Document().PageCount(), 8);
        QCOMPARE(View().CurrentPage(), 3);
        QTRY_VERIFY(View().IsComplete());
        QVERIFY(Shot() != before);
        QVERIFY(NoticeText().isEmpty());
        QVERIFY(WriteTestFile(window->Document().Path(), "II*")); // and is damaged in its place
        QTRY_VERIFY(NoticeText().contains("changed"));
        QCOMPARE(window->Document().PageCount(), 8);
    }

    void badFilesAreToldInTheWindow()
    {
        const QByteArray whole = FaxFile().Bytes();
        const QString bad = folder.filePath("bad\nname.tif");
        for (const QByteArray &bytes : {QByteArray(), QByteArray("Dear Sir,"), whole.chopped(20)}) {
            MakeWindow();
            QVERIFY(WriteTestFile(bad, bytes));
            const QImage before = Shot();
            window->Open(bad);
            QTRY_VERIFY(View().accessibleDescription().contains("damaged"));
            QVERIFY(View().accessibleDescription().startsWith("bad name.tif\n"));
            QVERIFY(Shot() != before); // a text that is drawn
            QVERIFY(!window->findChild<QAction *>("mnuPrint")->isEnabled());
            QVERIFY(!window->findChild<QLineEdit *>("txtPage")->isEnabled());
            for (const Qt::Key key :
                 {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_End, Qt::Key_Plus, Qt::Key_F, Qt::Key_R})
                Press(key);
        }
    }

    void missingFileIsShownWhenItComesAndLeavesAnotherFaxOnShow()
    {
        window->Open(folder.filePath("later.tif"));
        QTRY_VERIFY(View().accessibleDescription().contains("does not exist"));
        QVERIFY(!Write({.lPages = 2, .bSizePrefix = true}, "later.tif").isEmpty());
        QTRY_COMPARE(window->Document().PageCount(), 2);
        QTRY_VERIFY(View().IsComplete());
        QVERIFY(!FindInk(Shot(), {0, 0, 120, 80}).isEmpty());
        window->Open(folder.filePath("nowhere.tif"));
        QTRY_VERIFY(NoticeText().startsWith("nowhere.tif"));
        QCOMPARE(window->Document().PageCount(), 2);
        QCOMPARE(window->windowTitle(), "later.tif");
    }

    void droppedFileIsOpened()
    {
        QMimeData data;
        data.setUrls({QUrl("https://example.org/fax.tif"), QUrl::fromLocalFile(Write({.lPages = 4}))});
        QDragEnterEvent enter({50, 300}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window.get(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(50, 300), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window.get(), &drop);
        QTRY_COMPARE(window->Document().PageCount(), 4);
    }

    void fullScreenShowsTheFaxAlone()
    {
        Show({.lPages = 2});
        Press(Qt::Key_F9);
        Press(Qt::Key_F11);
        QTRY_VERIFY(window->isFullScreen());
        auto *toolBar = window->findChild<QToolBar *>();
        QVERIFY(window->menuBar()->isHidden() && toolBar->isHidden());
        QVERIFY(!window->findChild<ThumbnailPane *>()->isVisible());
        Press(Qt::Key_Escape);
        QTRY_VERIFY(!window->isFullScreen());
        QVERIFY(!window->menuBar()->isHidden() && !toolBar->isHidden());
        QVERIFY(window->findChild<ThumbnailPane *>()->isVisible());
    }

    void windowIsRemembered()
    {
        Show({});
        Press(Qt::Key_F9);
        Press(Qt::Key_F);
        window->resize(640, 500);
        Press(Qt::Key_F11);
        QTRY_VERIFY(window->isFullScreen());
        window->close();
        window = std::make_unique<ViewerWindow>();
        window->show();
        QVERIFY(!window->isFullScreen());
        QCOMPARE(window->size(), QSize(640, 500));
        QVERIFY(window->findChild<ThumbnailPane *>()->isVisible());
        QCOMPARE(View().Mode(), PagesView::ZoomMode::Page);
    }

    void rubbishInTheSettingsIsIgnored()
    {
        QVERIFY(QDir().mkpath(folder.filePath("config/Velmar")));
        QVERIFY(
            WriteTestFile(folder.filePath("config/Velmar/VelmarBrowser.ini"),
                          "[Window]\nGeometry=@ByteArray(\\x1\\xd9rubbish)\nButtons=7\n[Zoom]\nMode=free\n"
                          "Factor=nan\n[Thumbnails]\nWidth=-4000000000\nShown=perhaps\n"));
        MakeWindow();
        Show({.lPages = 2});
        QVERIFY(window->width() > 300 && window->height() > 300);
        QCOMPARE(View().Zoom(), 1.0);
    }

    void commandLineNamesTheFile()
    {
        const std::pair<QStringList, QString> lines[] = {
            {{"/Brenmot", "/a b.tif"}, "/a b.tif"}, // the client's
            {{"a.tif"}, "a.tif"},
            {{}, ""},
            {{"/Brenmot"}, ""},
            {{"/Brenmot", "--help"}, "--help"},
            {{"--", "-a.tif"}, "-a.tif"},
            {{"a.tif", "b.tif"}, "problem"},
            {{"--fast"}, "problem"}};
        for (const auto &[arguments, expected] : lines) {
            const ViewerCommandLine line = ViewerCommandLine::Read(arguments);
            QCOMPARE(line.strProblem.isEmpty() ? line.strPath : "problem", expected);
        }
    }

    void programAnswersOnTheConsole()
    {
        qunsetenv("DISPLAY"); // nor is a screen needed
        for (const auto &[argument, exitCode, told] : {std::tuple("--help", 0, "/Brenmot"),
                                                       {"--version", 0, "VelmarBrowser.exe "},
                                                       {"--nonsense", 2, ""}}) {
            QProcess process;
            process.start(qEnvironmentVariable("VELMAR_BIN_DIR") + "/VelmarBrowser.exe", {argument});
            QVERIFY(process.waitForFinished());
            QCOMPARE(process.exitCode(), exitCode);
            QVERIFY(process.readAll().contains(told));
        }
    }

private:
    QString Write(const FaxFile &fax, const QString &name = "fax.tif") const
    {
        const QString path = folder.filePath(name);
        return fax.Write(path) ? path : QString();
    }

    void MakeWindow()
    {
        window = std::make_unique<ViewerWindow>();
        window->resize(700, 600);
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

    /// Opens a file and waits until its first page is on show.
    void Show(const FaxFile &fax)
    {
        window->Open(Write(fax));
        QTRY_COMPARE(window->Document().PageCount(), fax.lPages);
        QTRY_VERIFY(View().IsComplete());
    }

    PagesView &View() const { return window->Pages(); }
    QImage Shot() const { return View().viewport()->grab().toImage(); }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window->focusWidget(), key, modifiers);
    }

    QString NoticeText() const
    {
        const auto *text = window->findChild<QLabel *>("labNotice");
        return text->isVisible() ? text->text() : QString();
    }

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
};

QTEST_MAIN(tst_Viewer)
#include "tst_Viewer.moc"
