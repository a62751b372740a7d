#include "platform/CanberraSound.h"

#include "core/ProgramTitle.h"

#include <QFile>
#include <QFileInfo>

#include <canberra.h>

namespace {
constexpr uint32_t soundId = 1;

/// The system's list has a line for each device: "00-00: ALC257 Analog : ALC257 Analog : playback 1".
int CountCards()
{
    QFile list(QStringLiteral("/proc/asound/pcm"));
    if (!list.open(QIODevice::ReadOnly))
        return 0;
    int count = 0;
    const QList<QByteArray> lines = list.readAll().split('\n');
    for (const QByteArray &line : lines)
        count += line.contains("playback") ? 1 : 0;
    return count;
}

bool HasSoundServer()
{
    return !qEnvironmentVariableIsEmpty("PULSE_SERVER") ||
           QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/pulse/native"));
}
} // namespace

CanberraSound::~CanberraSound()
{
    if (context)
        ca_context_destroy(context);
}

int CanberraSound::DeviceCount() const
{
    return CountCards() + (HasSoundServer() ? 1 : 0);
}

void CanberraSound::Play(const QString &path)
{
    if (!QFileInfo(path).isFile())
        return;
    if (!context) {
        if (ca_context_create(&context) != CA_SUCCESS)
            return;
        ca_context_change_props(context, CA_PROP_APPLICATION_NAME, programTitle, nullptr);
    }
    ca_context_cancel(context, soundId);
    const int result = ca_context_play(context, soundId, CA_PROP_MEDIA_FILENAME,
                                       QFile::encodeName(path).constData(), nullptr);
    if (result != CA_SUCCESS)
        qWarning("The sound %s was not played: %s", qPrintable(path), ca_strerror(result));
}
