#include "compose/DocumentConversion.h"

#include "core/Globals.h"
#include "core/Message.h"
#include "core/PrinterProgress.h"
#include "core/Utilities.h"
#include "core/ports/Clock.h"
#include "core/ports/EventPump.h"
#include "core/ports/Ports.h"
#include "core/ports/Printers.h"
#include "core/ports/Shell.h"
#include "core/ports/Timer.h"

#include <QScopeGuard>

namespace {

constexpr QLatin1StringView lineBreak("\r\n");
constexpr int pollInterval = 100;       // milliseconds, of Timer1 too
constexpr int waitSlice = 10;           // milliseconds
constexpr int previewDelay = 2000;      // milliseconds
constexpr int cancelLimit = 10;         // seconds until a tool that does not listen is ended
constexpr qsizetype behindFileName = 3; // characters

} // namespace

using namespace PrintConversation;

DocumentConversion::DocumentConversion(const Ports &systemPorts, ConversionTurn &conversionTurn)
    : ports(systemPorts)
    , turn(conversionTurn)
    , pause(systemPorts)
    , Timer1(systemPorts.timers.Create())
{
    Timer1->SetInterval(pollInterval);
    connect(Timer1.get(), &Timer::Tick, this, [this] {
        ports.message.RunGuarded("error in Timer1_Timer function", [this] { OnTimer1Tick(); });
    });
}

DocumentConversion::~DocumentConversion()
{
    LeaveTurn();
}

void DocumentConversion::Open()
{
    sharedString.Create(ports.blocks, SharedName);
    if (!turn.bTaken)
        sharedString.SetItem({});
}

bool DocumentConversion::PrintFile(const PrintRequest &request, bool isSending)
{
    if (bRunning || !MayBegin(request))
        return false;
    bRunning = true;
    bSending = isSending;
    bPrintFailed = bEnded = bAborted = false;
    const auto end = qScopeGuard([this] { bRunning = false; });
    const bool isDone = ports.message.RunGuarded("error in printfile function ", [&] {
        if (!TakeTurn())
            return;
        Begin(request);
        StartPrintWait();
    });
    LeaveTurn();
    if (!isDone) {
        Timer1->SetEnabled(false);
        ShowPanel(false);
    }
    bPrinted = true;
    return isDone && !bPrintFailed;
}

bool DocumentConversion::MayBegin(const PrintRequest &request)
{
    const auto refuse = [this](const QString &text, long flags) {
        ports.message.ShowMessage(text, flags);
        return false;
    };
    if (request.aFiles.isEmpty())
        return refuse(tr("There's no content to Fax, please press Add files button to add a file."),
                      mbInformation);
    if (!FileExists(AppPath(ports.folders) + "ZemPrint.exe"))
        return refuse(tr("Cannot find ZemPrint.exe, please reinstall Velmar Client."), mbInformation);
    if (!ports.printers.Has(QStringLiteral("Zem Fax Printer")))
        return refuse(tr("Cannot find Zem Fax Printer, please reinstall Velmar Client."),
                      mbInformation + mbOKCancel);
    return true;
}

/// Waits until no other composer converts; false when the user has given up meanwhile.
bool DocumentConversion::TakeTurn()
{
    ResetPanel(tagRunning);
    panel.bVisible = panel.bBusyPointer = true;
    if (turn.bTaken)
        panel.strStatus = tr("Another fax is being converted. This one comes next.");
    emit PanelChanged();
    while (turn.bTaken && !bAborted && !ports.pump.IsQuitting())
        ports.pump.RunSlice(waitSlice);
    if (bAborted || ports.pump.IsQuitting()) {
        bPrintFailed = true;
        return false;
    }
    turn.bTaken = bHasTurn = true;
    return true;
}

void DocumentConversion::LeaveTurn()
{
    if (bHasTurn)
        turn.bTaken = bHasTurn = false;
}

void DocumentConversion::Begin(const PrintRequest &request)
{
    SetStatus({});
    sharedString.SetItem({});
    strRequest = request.Pack();
    sharedString.SetItem(strRequest);
    tool = ports.shell.Start(AppPath(ports.folders) + "ZemPrint.exe", {});
    Timer1->SetEnabled(true); // tells, too, when it did not start
}

void DocumentConversion::StartPrintWait()
{
    while (!bEnded && !bAborted && !ports.pump.IsQuitting())
        ports.pump.RunSlice(waitSlice);
    if (!bEnded && !bAborted) {
        sharedString.SetItem(StopRequest);
        bPrintFailed = true;
    }
}

void DocumentConversion::EndPrintWait()
{
    bEnded = true;
}

void DocumentConversion::AbortPrintWait()
{
    bAborted = true;
}

void DocumentConversion::OnTimer1Tick()
{
    // In this order: what it wrote before its end must be seen.
    const bool isAlive = IsToolRunning();
    ReadReply(sharedString.Item());
    if (!isAlive && !bEnded && !bAborted)
        ReadReply(Error);
}

bool DocumentConversion::IsToolRunning() const
{
    return tool && tool->IsRunning();
}

bool DocumentConversion::IsOwn(const QString &text) const
{
    return text.isEmpty() || text == strRequest || text == StopRequest;
}

void DocumentConversion::ReadReply(const QString &reply)
{
    if (IsOwn(reply))
        return;
    if (reply == Error) {
        Fail(tr("Unknow error or Zem Fax Printer doesn't exist."));
        return;
    }
    const bool isFinished = reply.contains(FinishMark);
    if (!reply.contains(',') && !isFinished) // a text with a comma is the tool's own
        SetStatus(reply);
    if (reply.contains(FailureMark))
        Fail(panel.strStatus);
    else if (isFinished)
        Finish(reply);
}

void DocumentConversion::Fail(const QString &status)
{
    bPrintFailed = true;
    Timer1->SetEnabled(false);
    panel.strCaption = tr("&Close");
    panel.lTag = tagError;
    panel.bBusyPointer = false;
    SetStatus(status);
    LeaveTurn();
    AbortPrintWait();
}

void DocumentConversion::Finish(const QString &reply)
{
    strResult = ResultPath(reply);
    if (strResult.isEmpty()) {
        Fail(tr("The print tool has left no fax in the outbox."));
        return;
    }
    Timer1->SetEnabled(false);
    EndPrintWait();
    panel.strCaption = tr("&Close");
    panel.lTag = bPrintFailed ? tagError : tagFinish;
    panel.bBusyPointer = false;
    SetStatus(panel.strStatus + lineBreak + tr("Printing completed."));
    LeaveTurn();
    emit Rendered(strResult);
    if (bPrintFailed || bSending)
        return;
    pause.Wait(previewDelay);
    if (!pause.Cancel && panel.lTag == tagFinish && !ports.pump.IsQuitting())
        btnCancel_Click();
}

QString DocumentConversion::ResultPath(const QString &reply)
{
    const qsizetype mark = reply.indexOf(FinishMark);
    const QString name = reply.mid(mark + 1, reply.size() - mark - 1 - behindFileName);
    const QString path = Global().strOutputBoxPath + name;
    return !name.isEmpty() && GetBareName(name) == name && FileExists(path) ? path : QString();
}

void DocumentConversion::btnCancel_Click()
{
    switch (panel.lTag) {
    case tagRunning:
        if (panel.bButtonEnabled) // a second click may be on its way
            CancelTool();
        break;
    case tagFinish:
        pause.Cancel = true;
        ResetPanel(tagRunning);
        emit PanelChanged();
        if (!turn.bTaken)
            sharedString.SetItem({});
        emit ViewRequested(strResult);
        break;
    case tagError:
        Timer1->SetEnabled(false);
        ShowPanel(false);
        AbortPrintWait();
        break;
    case tagClose:
        break;
    }
}

void DocumentConversion::CancelTool()
{
    panel.bButtonEnabled = false;
    SetStatus(panel.strStatus + lineBreak + tr("Canceling print jobs..."));
    Timer1->SetEnabled(false);
    AbortPrintWait();
    if (bHasTurn) {
        sharedString.SetItem(StopRequest);
        if (!WaitForPrinterIdle())
            KillTool();
    }
    ResetPanel(tagClose);
    bPrintFailed = true;
    if (bHasTurn)
        ReadReply(sharedString.Item());
    LeaveTurn();
    ShowPanel(false);
}

/// Waits for the tool as long as it may take to clean up; false when it does not end.
bool DocumentConversion::WaitForPrinterIdle()
{
    const qint64 end = ports.clock.Milliseconds() + cancelLimit * 1000;
    WaitForPrinter(ports, cancelLimit);
    while (IsToolRunning() && ports.clock.Milliseconds() < end && !ports.pump.IsQuitting())
        ports.pump.RunSlice(waitSlice);
    return !IsToolRunning();
}

void DocumentConversion::KillTool()
{
    tool->Kill();
    SetPrinterStatus(ports.folders, printerFailed); // it said that it works: the next wait would believe it
}

void DocumentConversion::ResetPanel(Tag tag)
{
    panel = Panel();
    panel.strCaption = tr("&Cancel");
    panel.lTag = tag;
}

void DocumentConversion::SetStatus(const QString &status)
{
    panel.strStatus = status;
    emit PanelChanged();
}

void DocumentConversion::ShowPanel(bool visible)
{
    panel.bVisible = visible;
    emit PanelChanged();
}
