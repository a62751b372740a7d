#pragma once

#include "Script.h"

#include <QObject>
#include <QTimer>

#include <functional>

class QTcpSocket;
class ReplyStream;

/// Goes through the steps of one scripted reply.
class ScriptPlayer final : public QObject
{
    Q_OBJECT

public:
    /// Gives the server's own answer with its records cut to a number of fields; 0 leaves them whole.
    using Answer = std::function<void(int fields)>;

    ScriptPlayer(ReplyStream &stream, QTcpSocket &socket);

    void Play(const QList<ScriptAction> &actions, bool isLong, Answer answer);
    /// True during a delay: what the client sends meanwhile waits.
    bool IsBusy() const { return tmrDelay.isActive(); }

signals:
    /// A reply with delays in it has come to its end.
    void Done();

private:
    void PlayOn();
    void Perform(const ScriptAction &action);
    void Send(const ScriptAction &action);

    ReplyStream &objStream;
    QTcpSocket &sckClient;
    QTimer tmrDelay;
    QList<ScriptAction> aActions; ///< what is left
    bool bLong = false;
    Answer fnAnswer;
    int lFields = 0;
};
