#pragma once

#include "core/ports/Ids.h"

/// Random GUIDs of the system.
class SystemIds final : public Ids
{
public:
    QByteArray NewGuid() override;
};
