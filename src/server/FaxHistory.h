#pragma once

#include <QString>

class FaxDownload;
class Session;
struct Ports;

/// Fetches faxes that the server has delivered before, or has sent, and still holds.
class FaxHistory
{
public:
    FaxHistory(const Ports &ports, Session &session, FaxDownload &faxDownload);

    /// One run. `request` is what `HistoryRequest::Text` gives; empty does nothing.
    void mnuGetHistory(const QString &request);

private:
    bool Fetch(const QString &request);

    const Ports &ports;
    Session &session;
    FaxDownload &faxDownload;
};
