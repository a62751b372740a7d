#pragma once

/// The comparison of the public address data with the server's, which runs after each login.
class AddressSync
{
public:
    virtual ~AddressSync() = default;

    /// Fetches what changed at the server. This base fetches nothing.
    virtual void GetServerData() {}
};
