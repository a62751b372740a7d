#pragma once

#include <QString>

class Sound
{
public:
    virtual ~Sound() = default;

    /// The number of devices that can play a sound.
    virtual int DeviceCount() const = 0;

    /// Plays a sound file and returns at once; a missing file plays nothing.
    virtual void Play(const QString &path) = 0;
};
