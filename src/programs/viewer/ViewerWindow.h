#pragma once

#include "FaxDocument.h"
#include "FileWatch.h"
#include "PageRenderer.h"
#include "TableReader.h"

#include <QMainWindow>

#include <memory>

class NoticeBar;
class PageBox;
class PagesView;
class QLabel;
class QSplitter;
class ThumbnailPane;
class ViewerCommands;
class ZoomBox;

/// The window of the viewer: one fax, or a text that says why there is none.
class ViewerWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit ViewerWindow(QWidget *parent = nullptr);
    ~ViewerWindow() override;

    /// Opens a file in the place of the present one. One that cannot be shown leaves that on show.
    void Open(const QString &path);
    FaxDocument &Document() { return document; }
    PagesView &Pages() const { return *view; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void PlacePanes();
    void MakeStatusBar();
    void SetUpFileCommands();
    void SetUpViewCommands();
    void SetUpPageCommands();
    void ConnectPanes();
    void ConnectDocument();
    void RestoreSettings();
    void SaveSettings();

    void ReadAgain();
    void AskForFile();
    void AskForPage();
    void TakeTable(const QString &path, const FaxPages &pages);
    void TakeTableAgain(const FaxPages &pages);
    void TellLost();
    void ShowDocument();
    void ShowPlace();
    void ShowZoom();
    void ShowThumbnails(bool shown);
    void GoToNextPane();
    void SetFullScreen(bool full);
    void ShowAbout();

    FaxDocument document;
    PageRenderer renderer;
    TableReader reader;
    FileWatch watch;
    PagesView *view;
    ThumbnailPane *thumbnails;
    NoticeBar *notice;
    PageBox *pageBox;
    ZoomBox *zoomBox;
    QSplitter *splitter;
    QLabel *labPage, *labPaper;
    std::unique_ptr<ViewerCommands> commands;
    QString strWanted;        ///< the path that is being opened
    QByteArray abBeforeFull;  ///< the window's geometry before it filled the screen
    bool bThumbnails = false; ///< wanted, if not in full screen
    bool bReadingAgain = false;
};
