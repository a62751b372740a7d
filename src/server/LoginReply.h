#pragma once

#include <QString>

struct ClientReply;

/// What the server says during a login.
struct LoginReply
{
    enum Kind {
        rplOther,      ///< none of the below: nothing follows from it
        rplGreeting,   ///< the server's first words; `strVersion` is its protocol version
        rplAccepted,   ///< the login is good
        rplRefused,    ///< `strCode` tells why
        rplUnexpected, ///< a refusal or greeting without its second line
    };

    Kind kind = rplOther;
    QString strCode;
    QString strVersion;

    /// Reads a reply. A refusal anywhere in it outweighs everything else.
    static LoginReply Classify(const ClientReply &reply);
    /// The message for a refusal's reason code; empty when there is none.
    static QString RefusalText(const QString &code);
    static QString SpokenVersion();
    /// True for the one protocol version that this program speaks.
    static bool IsSpokenVersion(const QString &version);
};

/// The text of the server box as host and port; without a ":" the port is "8750".
struct ServerAddress
{
    QString strHost;
    QString strPort;

    static ServerAddress FromText(const QString &text);
};
