#pragma once

#include "core/ports/SharedBlock.h"

/// Blocks in mapped files of the user's runtime folder. A lock on the file counts the holders, so that the
/// count is right also after a holder was killed.
class SystemSharedBlocks final : public SharedBlocks
{
public:
    std::unique_ptr<SharedBlock> Open(const QString &name, int size, int &errorCode) override;
};
