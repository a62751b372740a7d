#include "server/Progress.h"

#include "core/ports/Timer.h"
#include "server/wire/Frames.h"

#include <QCoreApplication>

#include <algorithm>

namespace {
constexpr int lAnimationInterval = 100; // milliseconds
constexpr int lShowDelay = 500;
constexpr int lLeastStay = 700;
constexpr int lLastFrame = 6;
constexpr int lFreshPercent = 5; // a task below this has just begun

QString Tr(const char *text)
{
    return QCoreApplication::translate("Progress", text);
}

/// What a mode of `ChangePos2` does.
struct Mode
{
    enum Bar { barStays, barTaskDone, barTaskRuns };
    enum Select { selNone, selLastFresh, selIndexFresh, selIndex };

    const char *image;
    const char *state; ///< null leaves the text
    const char *text;  ///< null leaves the text line
    Bar bar = barStays;
    Select select = selNone;
    bool bStops = false;
};

constexpr const char *receivingText = QT_TRANSLATE_NOOP("Progress", "Receiving fax %1 of %2");
constexpr const char *sendingText = QT_TRANSLATE_NOOP("Progress", "Sending fax %1 of %2");

const Mode *FindMode(int mode)
{
    static const Mode failedReceive{"imgError", QT_TRANSLATE_NOOP("Progress", "Failed"), receivingText,
                                    Mode::barTaskDone};
    static const Mode modes[] = {
        {"imgReceive", QT_TRANSLATE_NOOP("Progress", "Receiving"), receivingText, Mode::barTaskRuns,
         Mode::selLastFresh},
        {"imgOK", QT_TRANSLATE_NOOP("Progress", "Completed"), nullptr},
        {"imgSend", QT_TRANSLATE_NOOP("Progress", "Sending"), sendingText, Mode::barTaskRuns,
         Mode::selIndexFresh},
        {"imgWarning", QT_TRANSLATE_NOOP("Progress", "Exists"), receivingText, Mode::barTaskDone,
         Mode::selIndex},
        {"imgError", QT_TRANSLATE_NOOP("Progress", "Failed"), sendingText, Mode::barTaskDone},
        {"imgError", QT_TRANSLATE_NOOP("Progress", "Canceled"), nullptr, Mode::barStays, Mode::selNone, true},
        {"imgError", QT_TRANSLATE_NOOP("Progress", "Disconnected"), nullptr, Mode::barStays, Mode::selNone,
         true},
        {nullptr, nullptr, nullptr}, // 7 is not in use
        {"imgOK", QT_TRANSLATE_NOOP("Progress", "Completed"), nullptr},
        {"imgInfo", nullptr, nullptr},
    };
    if (mode == -1)
        return &failedReceive;
    return mode >= 0 && mode < static_cast<int>(std::size(modes)) ? &modes[mode] : nullptr;
}

int BarOf(const Mode &mode, int index, int percent, int total)
{
    const qint64 done =
        mode.bar == Mode::barTaskDone ? qint64(index) * 100 : qint64(index - 1) * 100 + percent;
    return Frames::Percent(done, qint64(total) * 100);
}

bool Selects(const Mode &mode, int percent)
{
    return mode.select == Mode::selIndex || (mode.select != Mode::selNone && percent < lFreshPercent);
}
} // namespace

Progress::Progress(Timers &timers, QObject *parent)
    : QObject(parent)
    , Timer1(timers.Create())
    , tmrShow(timers.Create())
    , tmrStay(timers.Create())
{
    Timer1->SetInterval(lAnimationInterval);
    tmrShow->SetInterval(lShowDelay);
    tmrStay->SetInterval(lLeastStay);
    connect(Timer1.get(), &Timer::Tick, this, &Progress::OnTimer1);
    connect(tmrShow.get(), &Timer::Tick, this, &Progress::OnShowTick);
    connect(tmrStay.get(), &Timer::Tick, this, &Progress::OnStayTick);
    Reset();
}

Progress::~Progress() = default;

void Progress::Reset()
{
    lMode = lTotal = lCurrent = lBar = lFrame = lNextFrame = 0;
    lSelectedRow = -1;
    aRows.clear();
    strText.clear();
    ResetHeads();
    strButtonTag = "Close";
    strButtonCaption = Tr("&Close");
    bButtonEnabled = true;
}

void Progress::ResetHeads()
{
    strCaption = Tr("Velmar Client");
    strFileHeader = Tr("File");
    strStateHeader = Tr("State");
}

void Progress::Load()
{
    if (bLoaded)
        return;
    Reset();
    bLoaded = true;
    emit RowsChanged();
    emit Changed();
}

void Progress::Show(bool owned)
{
    Load();
    tmrShow->SetEnabled(false);
    bVisible = true;
    emit Shown(owned);
}

void Progress::ShowSoon(bool owned)
{
    Load();
    bOwnedSoon = owned;
    tmrShow->SetEnabled(!bVisible);
}

void Progress::OnShowTick()
{
    Show(bOwnedSoon);
    tmrStay->SetEnabled(true);
}

void Progress::Unload()
{
    if (!bLoaded)
        return;
    StopAnimation();
    tmrShow->SetEnabled(false);
    bLoaded = false;
    bVisible = false;
    if (!tmrStay->IsEnabled())
        emit Unloaded();
}

void Progress::OnStayTick()
{
    tmrStay->SetEnabled(false);
    if (!bLoaded)
        emit Unloaded();
}

void Progress::SetTotal(int total)
{
    lTotal = total;
    emit Changed();
}

void Progress::SetCurrent(int current)
{
    lCurrent = current;
    emit Changed();
}

void Progress::SetText(const QString &text)
{
    strText = text;
    emit Changed();
}

void Progress::SetBar(int percent)
{
    lBar = std::clamp(percent, 0, 100);
    emit Changed();
}

void Progress::SetButton(const QString &tag, const QString &caption)
{
    strButtonTag = tag;
    strButtonCaption = caption;
    emit Changed();
}

void Progress::SetButtonEnabled(bool enabled)
{
    bButtonEnabled = enabled;
    emit Changed();
}

void Progress::ClearRows()
{
    aRows.clear();
    lSelectedRow = -1;
    emit RowsChanged();
}

void Progress::AddRow(const QString &file, const QString &image, const QString &state)
{
    aRows.append({image, file, state});
    emit RowsChanged();
}

void Progress::SetRowText(int row, const QString &file)
{
    if (row < 0 || row >= aRows.size())
        return;
    aRows[row].strFile = file;
    emit RowsChanged();
}

void Progress::StopAnimation()
{
    Timer1->SetEnabled(false);
}

bool Progress::IsAnimated() const
{
    return Timer1->IsEnabled();
}

void Progress::ChangePos2(int mode, int index, int &percent)
{
    const Mode *row = FindMode(mode);
    if (lTotal == 0 || !row)
        return;
    if (percent == 0)
        percent = 1;
    if (row->image)
        MarkLastRow(row->image, row->state ? Tr(row->state) : QString());
    if (Selects(*row, percent))
        SelectRow(row->select == Mode::selLastFresh ? static_cast<int>(aRows.size()) - 1 : index - 1);
    if (row->text)
        strText = Tr(row->text).arg(QString::number(index), QString::number(lTotal));
    if (row->bar != Mode::barStays)
        lBar = std::clamp(BarOf(*row, index, percent, lTotal), 0, 100);
    if (row->bStops)
        ShowStill();
    Animate(percent);
    emit Changed();
}

void Progress::MarkLastRow(const QString &image, const QString &state)
{
    if (aRows.isEmpty())
        return;
    aRows.last().strImage = image;
    if (!state.isEmpty())
        aRows.last().strState = state;
    emit RowsChanged();
}

void Progress::SelectRow(int row)
{
    if (row < 0 || row >= aRows.size())
        return;
    lSelectedRow = row;
    emit RowSelected(row);
}

void Progress::Animate(int percent)
{
    if (!owner || !owner->IsConnected())
        StopAnimation();
    else if (!IsAnimated() && percent < 100)
        Timer1->SetEnabled(true);
}

void Progress::ShowStill()
{
    StopAnimation();
    ShowImage(lLastFrame);
}

void Progress::ChangePos(int percent)
{
    lBar = std::clamp(percent, 0, 100);
    if (IsSyncMode()) {
        if (aRows.isEmpty())
            aRows.append(ProgressRow());
        aRows.last().strImage = percent >= 100 ? "imgOK" : "imgProcessing";
        aRows.last().strFile = Tr("Syncing public contacts: %1%").arg(percent);
        emit RowsChanged();
    }
    if (!IsAnimated() && percent < 100)
        Timer1->SetEnabled(true);
    emit Changed();
}

void Progress::SetWindowMode(bool on, const QString &text)
{
    lMode = on ? 1 : 0;
    if (on) {
        strCaption = Tr("Syncing public contacts...");
        AddRow(text);
        // The caption says "Close", the tag still cancels.
        strButtonTag = "Cancel";
        strButtonCaption = Tr("&Close");
        bButtonEnabled = true;
        strFileHeader = Tr("Tasks");
        strStateHeader = Tr("Status");
    }
    emit Changed();
}

void Progress::EndWindowMode()
{
    lMode = 0;
    ResetHeads();
    emit Changed();
}

void Progress::ShowImage(int frame)
{
    lFrame = frame;
    emit FrameChanged(frame);
}

void Progress::OnTimer1()
{
    if (lBar >= 100) {
        ShowStill();
        return;
    }
    if (lNextFrame == 0)
        lNextFrame = 1;
    ShowImage(lNextFrame);
    lNextFrame = lNextFrame % lLastFrame + 1;
}

void Progress::ClickCancelOperate()
{
    const bool cancels = strButtonTag == "Cancel";
    tmrStay->SetEnabled(false);
    if (cancels)
        CancelRun();
    else if (bLoaded)
        Unload();
    else
        emit Unloaded(); // it only stayed to be read
    if (!owner)
        return;
    owner->EnableMainWindow();
    owner->SetUserAbort();
    if (cancels)
        owner->SignalServerReply();
}

void Progress::CancelRun()
{
    lMode = 0;
    SetButton("Close", Tr("&Close"));
    SetButtonEnabled(true);
    if (owner) {
        // Also while synchronising: a wait that ends before its reply must not leave the reply to the next.
        owner->CancelTransfer();
        owner->SetCommMenu(true);
    }
    ShowStill();
}

void Progress::CloseByUser()
{
    if (!bButtonEnabled)
        return;
    ClickCancelOperate();
    Unload();
}
