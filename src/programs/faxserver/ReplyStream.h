#pragma once

#include "Outlet.h"

#include <QFile>
#include <QObject>

#include <memory>

class QTcpSocket;

/// Sends replies and fax files, and holds back what has to wait for the client's "GoOn".
///
/// A client grants permission after each of its reads, not after each block of ours: any number of "GoOn" may
/// come, early or late, and each counts as the permission for whatever waits then.
class ReplyStream final : public QObject
{
    Q_OBJECT

public:
    explicit ReplyStream(QTcpSocket &socket);

    Outlet &GetOutlet() { return objOutlet; }

    /// Forgets what waits for a permission; nothing is shaped any more.
    void BeginReply();
    void SendShort(const QByteArray &text);
    void SendLong(const QByteArray &text);
    /// Announces a file, and sends it as the client permits. False, with nothing sent, without the file.
    bool SendFile(const QByteArray &announcement, const QString &path);
    void Permit();
    /// True while a file goes out, until its last byte has left.
    bool IsStreaming() const { return state == stateStreaming; }

    /// The length in front of the next long reply, or the size in front of the next file, is told wrong.
    void DeclareWrong(qint64 value, bool isRelative);

signals:
    /// The whole file has left, and nothing of it was tampered with.
    void FileSent();
    /// No file is under way any more.
    void Idle();

private:
    enum State { stateIdle, stateAnnounced, stateStarted, stateStreaming };

    void WriteLong(const QByteArray &text, qint64 declared);
    qint64 Declared(qint64 real) const;
    void StartFile();
    void GoOnWithFile();
    void EndFile();

    Outlet objOutlet;
    QByteArray abRest; ///< of a long reply
    std::unique_ptr<QFile> objFile;
    State state = stateIdle;
    qint64 lDeclared = 0;
    bool bDeclareWrong = false;
    bool bDeclareRelative = false;
};
