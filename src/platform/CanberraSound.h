#pragma once

#include "core/ports/Sound.h"

struct ca_context;

/// Sounds by libcanberra: through the desktop's sound server, or else the machine's own cards.
class CanberraSound final : public Sound
{
public:
    CanberraSound() = default;
    ~CanberraSound() override;

    /// Playback devices of the machine, and one for a sound server.
    int DeviceCount() const override;
    /// A sound that still plays is cut off.
    void Play(const QString &path) override;

private:
    Q_DISABLE_COPY(CanberraSound)

    ca_context *context = nullptr;
};
