#include "mailbox/FaxPreview.h"

#include "core/Globals.h"
#include "core/Utilities.h"
#include "mailbox/FaxFiles.h"
#include "mailbox/FaxRow.h"

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
    ReadHeader(id, faxTable);
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
    lPages = strPreviewFile.isEmpty() ? 0 : FaxImage::GetPageCount(strPreviewFile);
    if (lPages == 0 || !Load()) {
        const QString complaint =
            strPreviewFile.isEmpty()
                ? tr("This fax has no pages yet.")
                : tr("The file of this fax is missing or cannot be read:") + "\n" + header.strFileName;
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

void FaxPreview::EmitAll()
{
    emit FaxChanged();
    emit PageChanged();
    emit ZoomChanged();
}

bool FaxPreview::Load()
{
    page = FaxImage::LoadPage(strPreviewFile, lPage, lRotation);
    return HasImage();
}

void FaxPreview::ResetPreview(bool toDefaults)
{
    header = {};
    strPreviewFile.clear();
    strComplaint.clear();
    page = {};
    lPage = lPages = lRotation = 0;
    bDoubleHeight = false;
    if (toDefaults)
        bFitWidth = bZoom100 = false;
    EmitAll();
}

QString FaxPreview::PageText() const
{
    return lPages > 0 ? QString::number(lPage + 1) + " / " + QString::number(lPages) : QString();
}

void FaxPreview::GoToPage(int zeroBased)
{
    if (zeroBased < 0 || zeroBased >= lPages)
        return;
    lPage = zeroBased;
    Load();
    emit PageChanged();
}

void FaxPreview::Rotate(int degrees)
{
    if (lPages == 0)
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
