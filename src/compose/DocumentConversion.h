#pragma once

#include "core/CSharedString.h"
#include "core/clsWaitableTimer.h"
#include "core/formats/PrintRequest.h"

#include <QObject>
#include <QString>

#include <memory>

class RunningProgram;
class Timer;
struct Ports;

/// Who has the shared string of the print tool: one conversion at a time. The program has one object.
struct ConversionTurn
{
    bool bTaken = false;
};

/// The conversation of one composer with the print tool, and the panel that shows it. The wait for the tool
/// keeps events running; the object stays until `PrintFile` has returned.
class DocumentConversion final : public QObject
{
    Q_OBJECT

public:
    /// What is known of the panel's button: an empty tag while a conversion runs.
    enum Tag { tagRunning, tagClose, tagFinish, tagError };

    /// `picProcess` and what stands in it.
    struct Panel
    {
        bool bVisible = false;
        QString strStatus;
        QString strCaption;
        Tag lTag = tagRunning;
        bool bButtonEnabled = true;
        bool bBusyPointer = false;
    };

    DocumentConversion(const Ports &systemPorts, ConversionTurn &conversionTurn);
    ~DocumentConversion() override;

    /// Opens the shared string and clears it, unless another composer is just using it. Raises the system's
    /// error.
    void Open();

    /// Converts, and returns after the tool has finished, failed or been cancelled; true when it has not
    /// failed. `isSending` holds back the preview at its end. Messages say why it could not begin.
    bool PrintFile(const PrintRequest &request, bool isSending);
    /// The panel's button: cancels, or closes the panel and, after a success, opens the viewer.
    void btnCancel_Click();

    const Panel &Shown() const { return panel; }
    /// From the call of `PrintFile` to its end.
    bool IsRunning() const { return bRunning; }

    bool bPrinted = false; ///< a conversion was started in this window's life
    bool bPrintFailed = false;

signals:
    void PanelChanged();
    /// The tool has left the fax under this full path.
    void Rendered(const QString &path);
    void ViewRequested(const QString &path);

private:
    bool MayBegin(const PrintRequest &request);
    bool TakeTurn();
    void LeaveTurn();
    void Begin(const PrintRequest &request);
    void StartPrintWait();
    void EndPrintWait();
    void AbortPrintWait();

    void OnTimer1Tick();
    void ReadReply(const QString &reply);
    bool IsOwn(const QString &text) const;
    void Fail(const QString &status);
    void Finish(const QString &reply);
    /// Empty unless the reply names a file of the outbox.
    static QString ResultPath(const QString &reply);

    void CancelTool();
    bool WaitForPrinterIdle();
    bool IsToolRunning() const;
    void KillTool();
    void ResetPanel(Tag tag);
    void SetStatus(const QString &status);
    void ShowPanel(bool visible);

    const Ports &ports;
    ConversionTurn &turn;
    CSharedString sharedString;
    clsWaitableTimer pause; ///< before a preview opens by itself
    std::unique_ptr<Timer> Timer1;
    std::unique_ptr<RunningProgram> tool;
    Panel panel;
    QString strRequest;
    QString strResult; ///< full path
    bool bRunning = false;
    bool bSending = false;
    bool bHasTurn = false;
    bool bEnded = false;   ///< the wait's first event
    bool bAborted = false; ///< its second
};
