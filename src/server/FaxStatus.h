#pragma once

/// Following the faxes that the server is sending.
class FaxStatus
{
public:
    virtual ~FaxStatus() = default;

    /// Asks for the state of all faxes in "Sending" and applies it. This base asks nothing.
    virtual void CheckFaxState(bool showProgress) { static_cast<void>(showProgress); }
};
