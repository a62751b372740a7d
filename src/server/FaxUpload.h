#pragma once

#include <QString>

/// Handing the faxes of "Outgoing" to the server.
class FaxUpload
{
public:
    virtual ~FaxUpload() = default;

    /// Sends the faxes of `idList` (`useList`), or all that wait. `clearRows` clears the progress rows first,
    /// `checkStateAfter` asks for the states afterwards. False only when connecting failed or an error was
    /// caught. This base sends nothing.
    virtual bool GetSendFaxID(bool useList, const QString &idList, bool clearRows, bool checkStateAfter)
    {
        static_cast<void>(useList);
        static_cast<void>(idList);
        static_cast<void>(clearRows);
        static_cast<void>(checkStateAfter);
        return true;
    }
};
