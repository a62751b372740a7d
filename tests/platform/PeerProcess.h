#pragma once

#include <QElapsedTimer>
#include <QProcess>

/// A second process that a test talks to.
class PeerProcess final : public QProcess
{
public:
    explicit PeerProcess(const QStringList &arguments)
    {
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
        start(PEER_PROGRAM, arguments);
    }
    ~PeerProcess() override
    {
        kill();
        waitForFinished();
    }

    /// Its next line; null when none comes.
    QString NextLine()
    {
        QElapsedTimer passed;
        passed.start();
        while (!canReadLine() && passed.elapsed() < 20000 && waitForReadyRead(20000))
            continue;
        return canReadLine() ? QString::fromUtf8(readLine()).chopped(1) : QString();
    }

    /// Lets it go on its own; true when it ended well.
    bool Leave()
    {
        closeWriteChannel();
        return waitForFinished() && exitStatus() == NormalExit && exitCode() == 0;
    }

    /// kill -9.
    bool Kill()
    {
        kill();
        return waitForFinished();
    }
};
