#include "ScriptPlayer.h"

#include "ReplyStream.h"
#include "WireText.h"

#include <QTcpSocket>

ScriptPlayer::ScriptPlayer(ReplyStream &stream, QTcpSocket &socket)
    : objStream(stream)
    , sckClient(socket)
{
    tmrDelay.setSingleShot(true);
    tmrDelay.setTimerType(Qt::PreciseTimer);
    connect(&tmrDelay, &QTimer::timeout, this, [this] {
        PlayOn();
        if (!IsBusy())
            emit Done();
    });
}

void ScriptPlayer::Play(const QList<ScriptAction> &actions, bool isLong, Answer answer)
{
    aActions = actions;
    bLong = isLong;
    fnAnswer = std::move(answer);
    lFields = 0;
    PlayOn();
}

void ScriptPlayer::PlayOn()
{
    while (!aActions.isEmpty() && !IsBusy())
        Perform(aActions.takeFirst());
}

void ScriptPlayer::Perform(const ScriptAction &action)
{
    switch (action.kind) {
    case ScriptAction::actDelay:
        tmrDelay.start(int(action.lFirst));
        break;
    case ScriptAction::actSilence:
    case ScriptAction::actKeepID:
        break;
    case ScriptAction::actClose:
        objStream.GetOutlet().Close();
        break;
    case ScriptAction::actAbort:
        sckClient.abort();
        break;
    case ScriptAction::actPieces:
        objStream.GetOutlet().CutIntoPieces(action.lFirst, int(action.lSecond));
        break;
    case ScriptAction::actCloseAfter:
        objStream.GetOutlet().CloseAfter(action.lFirst);
        break;
    case ScriptAction::actStallAfter:
        objStream.GetOutlet().StallAfter(action.lFirst);
        break;
    case ScriptAction::actDeclare:
        objStream.DeclareWrong(action.lFirst, false);
        break;
    case ScriptAction::actDeclareBy:
        objStream.DeclareWrong(action.lFirst, true);
        break;
    case ScriptAction::actFields:
        lFields = int(action.lFirst);
        break;
    default:
        Send(action);
    }
}

void ScriptPlayer::Send(const ScriptAction &action)
{
    if (action.kind == ScriptAction::actAnswer)
        fnAnswer(lFields);
    else if (action.kind == ScriptAction::actRaw)
        objStream.GetOutlet().Write(action.abText);
    else if (action.kind == ScriptAction::actLong)
        objStream.SendLong(action.abText);
    else if (action.kind == ScriptAction::actRefuse && bLong)
        objStream.SendLong(WireText::Refused(int(action.lFirst)));
    else if (action.kind == ScriptAction::actRefuse)
        objStream.SendShort(WireText::Refused(int(action.lFirst)));
    else
        objStream.SendShort(action.abText);
}
