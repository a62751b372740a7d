#pragma once

#include "core/ports/Folders.h"

/// The folders of the XDG base directories and of the running program.
class SystemFolders final : public Folders
{
public:
    QString CommonAppData() const override;
    QString UserAppData() const override;
    QString Program() const override;
};
