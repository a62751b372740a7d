#include "mailbox/FaxPreview.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "mailbox/FaxFiles.h"
#include "mailbox/FaxRow.h"
#include "mailbox/ShownText.h"

#include <QScopeGuard>

namespace {

/// Vertical resolutions of standard faxes, whose columns are twice as dense.
bool IsStandardResolution(int dotsPerInch)
{
    return dotsPerInch == 98 || dotsPerInch == 72;
}

} // namespace

void FaxPreview::LoadFaxPreview(const QString &id, int faxTable)
{
    header = {};
    strPreviewFile.clear();
    auto resetOnError = qScopeGuard([this] { ResetPreview(false); });
    ReadHeader(id, faxTable);
    resetOnError.dismiss();
    ShowPreviewPage();
}

void FaxPreview::ReadHeader(const QString &id, int faxTable)
{
    const bool received = faxTable == 0;
    const QString sql = received ? "Select Sender,Receiveuser,Title,FileName from ReceiveFax Where Fax_id='"
                                 : "Select Receivername,Title,FileName from SendFax Where Fax_id='";
    const auto row = Global().objDB->SelectEx(sql + id + "'");
    if (!row->Next())
        return;
    header.strSender = received ? UnescapeText(row->Text("Sender")) : QString();
    if (header.strSender.isEmpty())
        header.strSender = Global().strUserName;
    header.strReceiver =
        UnescapeText(received ? row->Text("Receiveuser") : RemoveLastChar(row->Text("Receivername"), ";"));
    header.strTitle = UnescapeText(row->Text("Title"));
    header.strFileName = GetBareName(UnescapeText(row->Text("FileName")));
    strPreviewFile =
        FindFaxFile(received ? Global().strInputBoxPath : Global().strOutputBoxPath, header.strFileName);
}

void FaxPreview::ShowPreviewPage()
{
    lRotation = 0;
    lPage = 0;
    pages = strPreviewFile.isEmpty() ? FaxPages() : FaxPages(strPreviewFile);
    if (pages.Count() == 0 || !Load()) {
        const QString complaint = WhyNoPage();
        ResetPreview(false);
        strComplaint = complaint;
        emit FaxChanged();
        return;
    }
    strComplaint.clear();
    bDoubleHeight = IsStandardResolution(page.lDotsPerInchY);
    if (!bZoom100)
        bFitWidth = true;
    EmitAll();
}

QString FaxPreview::WhyNoPage() const
{
    if (strPreviewFile.isEmpty())
        return tr("This fax has no pages yet.");
    const QString problem = FileExists(strPreviewFile) ? tr("The file of this fax cannot be read:")
                                                       : tr("The file of this fax is missing:");
    return problem + "\n" + ToListText(header.strFileName);
}

void FaxPreview::EmitAll()
{
    emit FaxChanged();
    emit PageChanged();
    emit ZoomChanged();
}

bool FaxPreview::Load()
{
    page = {}; // two large pages would take too much memory
    emit AboutToLoad(pages.IsLarge(lPage));
    page = pages.Load(lPage, lRotation);
    emit Loaded();
    return HasImage();
}

void FaxPreview::ResetPreview(bool toDefaults)
{
    header = {};
    strPreviewFile.clear();
    strComplaint.clear();
    pages = {};
    page = {};
    lPage = lRotation = 0;
    bDoubleHeight = false;
    if (toDefaults)
        bFitWidth = bZoom100 = false;
    EmitAll();
}

QString FaxPreview::PageText() const
{
    const int total = pages.Count();
    return total > 0 ? QString::number(lPage + 1) + " / " + QString::number(total) : QString();
}

void FaxPreview::GoToPage(int zeroBased)
{
    if (zeroBased < 0 || zeroBased >= pages.Count())
        return;
    lPage = zeroBased;
    Load();
    emit PageChanged();
}

void FaxPreview::Rotate(int degrees)
{
    if (pages.Count() == 0)
        return;
    lRotation += degrees;
    Load();
    emit PageChanged();
}

void FaxPreview::SetFitWidth()
{
    bFitWidth = true;
    bZoom100 = false;
    emit ZoomChanged();
}

void FaxPreview::SetZoom100()
{
    bFitWidth = false;
    bZoom100 = true;
    emit ZoomChanged();
}

void FaxPreview::SetFreeZoom()
{
    bFitWidth = bZoom100 = false;
    emit ZoomChanged();
}
