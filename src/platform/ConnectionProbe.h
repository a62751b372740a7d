#pragma once

#include <QtGlobal>

/// Tells afterwards how a TCP connection ended: Qt reports a reset like an orderly close. Keeps a descriptor
/// of its own, which holds the connection open until the probe goes.
class ConnectionProbe
{
public:
    explicit ConnectionProbe(qintptr socketDescriptor);
    ~ConnectionProbe();
    Q_DISABLE_COPY_MOVE(ConnectionProbe)

    /// True when the connection is gone rather than closed by the other side.
    bool IsReset() const;

private:
    int lDescriptor;
};
