#pragma once

#include <QString>

/// The one door through which faxes go to the server. This base sends nothing.
class FaxSender
{
public:
    virtual ~FaxSender() = default;

    /// Sends the faxes of `idList`, ";" behind each (`useList`), or all that wait in "Outgoing". `clearRows`
    /// clears the progress rows first, `checkStateAfter` asks for the states afterwards. False only when
    /// connecting failed or an error was caught; the faxes then wait on.
    virtual bool GetSendFaxID(bool useList, const QString &idList, bool clearRows, bool checkStateAfter)
    {
        static_cast<void>(useList);
        static_cast<void>(idList);
        static_cast<void>(clearRows);
        static_cast<void>(checkStateAfter);
        return true;
    }
};
