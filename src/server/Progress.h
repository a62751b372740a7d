#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

class Timer;
class Timers;

/// What the progress window's button and animation need of the session.
class ProgressOwner
{
public:
    virtual ~ProgressOwner() = default;

    virtual bool IsConnected() const = 0;
    /// Aborts what the connection is doing.
    virtual void CancelTransfer() = 0;
    virtual void SetCommMenu(bool enabled) = 0;
    virtual void EnableMainWindow() = 0;
    virtual void SignalServerReply() = 0;
    virtual void SetUserAbort() = 0;
};

/// One task of the progress window.
struct ProgressRow
{
    QString strImage; ///< image key, such as "imgReceive"; empty for none
    QString strFile;  ///< first text column
    QString strState; ///< second text column

    bool operator==(const ProgressRow &) const = default;
};

/// The progress window of all send, receive and synchronisation runs, without its widgets: the runs write
/// here, the form shows it and passes its clicks on.
class Progress : public QObject
{
    Q_OBJECT

public:
    explicit Progress(Timers &timers, QObject *parent = nullptr);
    ~Progress() override;

    void SetOwner(ProgressOwner *owner) { this->owner = owner; }

    // The window

    /// Forgets the last run's rows, texts and mode unless the window is loaded already.
    void Load();
    /// Loads and shows the window, not modal; `owned` keeps it in front of the main window.
    void Show(bool owned = true);
    /// Loads the window for a run that may be over at once: it shows after half a second, and then stays long
    /// enough to be read. `owned` as for `Show`.
    void ShowSoon(bool owned = true);
    void Unload();
    bool IsLoaded() const { return bLoaded; }
    bool IsVisible() const { return bVisible; }

    // The controls

    void SetTotal(int total);          ///< number of tasks
    void SetCurrent(int current);      ///< 1-based number of the task under way
    void SetText(const QString &text); ///< `labSendProcess`
    void SetBar(int percent);          ///< `pbSend`, 0 to 100
    void SetButton(const QString &tag, const QString &caption);
    void SetButtonEnabled(bool enabled);
    void ClearRows();
    void AddRow(const QString &file, const QString &image = {}, const QString &state = {});
    void SetRowText(int row, const QString &file); ///< zero-based row
    void StopAnimation();

    int Total() const { return lTotal; }
    int Current() const { return lCurrent; }
    const QString &Text() const { return strText; }
    int Bar() const { return lBar; }
    const QString &ButtonTag() const { return strButtonTag; }
    const QString &ButtonCaption() const { return strButtonCaption; }
    bool IsButtonEnabled() const { return bButtonEnabled; }
    const QString &Caption() const { return strCaption; }
    /// Heads of the two text columns.
    const QString &FileHeader() const { return strFileHeader; }
    const QString &StateHeader() const { return strStateHeader; }
    const QList<ProgressRow> &Rows() const { return aRows; }
    int SelectedRow() const { return lSelectedRow; } ///< zero-based; -1 for none
    int Frame() const { return lFrame; }             ///< frame of the animation on show
    bool IsAnimated() const;
    bool IsSyncMode() const { return lMode == 1; }

    // The routines that the runs call

    /// Writes a task's state: `mode` as the runs know it (-1 failed ... 9 information), `index` 1-based.
    /// A `percent` of 0 is taken as 1 and written back. Does nothing while the total is 0.
    void ChangePos2(int mode, int index, int &percent);
    void ChangePos2(int mode, int index, int &&percent) { ChangePos2(mode, index, percent); }
    void ChangePos(int percent);
    void SetWindowMode(bool on, const QString &text);
    /// The end of a run that set the mode: the caption and the heads are the usual ones again.
    void EndWindowMode();
    void ShowImage(int frame);

    /// The click of the button: cancels the run or closes the window, as its tag tells.
    void ClickCancelOperate();
    /// The user closed the window by other means than the button.
    void CloseByUser();

signals:
    /// Texts, bar, button or heads changed.
    void Changed();
    void RowsChanged();
    void RowSelected(int row);
    void FrameChanged(int frame);
    void Shown(bool owned);
    void Unloaded();

private:
    void OnTimer1();
    void OnShowTick();
    void OnStayTick();
    void Reset();
    void ResetHeads();
    void MarkLastRow(const QString &image, const QString &state);
    void SelectRow(int row);
    void Animate(int percent);
    void ShowStill();
    void CancelRun();

    ProgressOwner *owner = nullptr;
    std::unique_ptr<Timer> Timer1;
    std::unique_ptr<Timer> tmrShow; ///< runs until a window shows that comes late
    std::unique_ptr<Timer> tmrStay; ///< runs while such a window may not go yet
    bool bLoaded = false;
    bool bVisible = false;
    bool bOwnedSoon = true; ///< of a window that comes late
    int lMode = 0;
    int lTotal = 0;
    int lCurrent = 0;
    int lBar = 0;
    int lFrame = 0;
    int lNextFrame = 0;
    int lSelectedRow = -1;
    QString strText;
    QString strCaption;
    QString strFileHeader;
    QString strStateHeader;
    QString strButtonTag;
    QString strButtonCaption;
    bool bButtonEnabled = true;
    QList<ProgressRow> aRows;
};
