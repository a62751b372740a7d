#pragma once

#include <QByteArray>

class Ids
{
public:
    virtual ~Ids() = default;

    /// The sixteen bytes of a new GUID, in memory order; empty when none could be made.
    virtual QByteArray NewGuid() = 0;
};
