#pragma once

#include "core/FaxImage.h"

#include <QObject>
#include <QString>

/// How the canvas fits a page.
enum class PageFit { Whole = 0, Width = 1, Height = 2 };

/// The fax in the preview pane: its header block, the page on show and what its buttons may do.
class FaxPreview final : public QObject
{
    Q_OBJECT

public:
    struct Header
    {
        QString strSender;
        QString strReceiver;
        QString strTitle;
        QString strFileName; ///< without its folder
    };

    /// Reads the fax from its table, 0 `ReceiveFax` or 1 `SendFax`, and shows its first page upright. A fax
    /// without a file that can be shown resets the preview. Raises the errors of the database, after a reset.
    void LoadFaxPreview(const QString &id, int faxTable);
    /// Empties the pane. `toDefaults` also forgets the zoom.
    void ResetPreview(bool toDefaults);

    const Header &Texts() const { return header; }
    const QString &PreviewFile() const { return strPreviewFile; } ///< full path; empty for none
    bool HasImage() const { return !page.IsEmpty(); }
    /// Why the latest fax shows no page, in words for the user; empty when it does, or none was asked for.
    const QString &Complaint() const { return strComplaint; }

    // The page

    const PageBits &Page() const { return page; }
    /// The page comes from a standard fax, whose lines are half as dense as its columns: it is shown at twice
    /// its height, or width when it lies on its side.
    bool IsStretchedX() const { return bDoubleHeight && IsSideways(); }
    bool IsStretchedY() const { return bDoubleHeight && !IsSideways(); }
    /// "<page> / <total>"; empty without a page.
    QString PageText() const;
    bool CanGoBack() const { return lPage > 0; }
    bool CanGoForward() const { return lPage + 1 < pages.Count(); }
    void GoToPage(int zeroBased);
    void FirstPage() { GoToPage(0); }
    void PreviousPage() { GoToPage(lPage - 1); }
    void NextPage() { GoToPage(lPage + 1); }
    void LastPage() { GoToPage(pages.Count() - 1); }
    /// Adds degrees, a multiple of 90, counter-clockwise. The sum runs on until another fax is shown.
    void Rotate(int degrees);
    int PreviewRotation() const { return lRotation; }
    int PreviewPage() const { return lPage; }

    // The zoom, which outlives the fax

    bool IsFitWidth() const { return bFitWidth; }
    bool IsZoom100() const { return bZoom100; }
    void SetFitWidth();
    void SetZoom100();
    /// The user has zoomed to some other factor.
    void SetFreeZoom();

signals:
    /// Another fax, or none.
    void FaxChanged();
    /// Another page or rotation, or another fax.
    void PageChanged();
    void ZoomChanged();
    /// A page is about to be decoded, which may take a while when it is large; the one before is gone.
    void AboutToLoad(bool isLarge);
    void Loaded();

private:
    bool IsSideways() const { return lRotation % 180 != 0; }
    void ReadHeader(const QString &id, int faxTable);
    void ShowPreviewPage();
    QString WhyNoPage() const;
    bool Load();
    void EmitAll();

    Header header;
    QString strPreviewFile;
    QString strComplaint;
    FaxPages pages;
    PageBits page;
    int lPage = 0;
    int lRotation = 0;
    bool bDoubleHeight = false;
    bool bFitWidth = false;
    bool bZoom100 = false;
};
