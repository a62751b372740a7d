#pragma once

#include "endtoend/ClientUnderTest.h"
#include "fixtures/TrialServer.h"

#include <QMap>
#include <QTemporaryDir>

#include <memory>

/// One account at a trial server with faxes waiting for it, and the client that fetches them.
class FetchTest
{
public:
    /// The server begins with the files delivered to "anna" and with the script, and dials nobody; true when
    /// it runs and the client is logged in. Ticks of the client's timers are shorter by `timerFactor`.
    bool Begin(const QStringList &files, const QByteArray &script = {}, int timerFactor = 1);
    /// Ends the program and starts it again with the same data.
    bool Restart(int timerFactor = 1);
    /// Three faxes of 30 KB.
    QStringList ThreeFaxes();
    QString MakeFax(const QString &name, int pages = 1, int bytes = 0);
    /// A fax to a number, which is its title too, waits in "Outgoing" with a file of these bytes, or of one
    /// page; returns its id. Users and contacts may be further recipients.
    QString Queue(const QString &number, const QByteArray &bytes = {}, const QString &timing = "-1",
                  const QString &users = {}, const QString &contacts = {});

    /// One run of "Receive". True when it ended in time and left nothing behind that a next run or the user
    /// would stumble over.
    bool Fetch();
    /// One run of "Synchronise"; true as for `Fetch`.
    bool Synchronise();

    /// One run of "Send"; true as for `Fetch`.
    bool Upload();

    /// Progress states such as "Completed", in the order of the rows.
    QStringList States() const;
    /// Titles of the stored faxes whose file is, byte for byte, the delivered one; "broken" for any other.
    QStringList WholeFaxes() const;

    QTemporaryDir home;
    TrialServer server;
    std::unique_ptr<ClientUnderTest> client;
    QMap<QString, QByteArray> delivered; ///< bytes of the files that were made, by title

private:
    bool RunIsOver(const std::function<void()> &run);
};
