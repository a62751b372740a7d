#pragma once

#include "core/Message.h"
#include "core/ports/Folders.h"
#include "core/ports/Ids.h"
#include "core/ports/Instance.h"
#include "core/ports/Ports.h"
#include "core/ports/SharedBlock.h"
#include "core/ports/Shell.h"
#include "core/ports/Sound.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeSocket.h"
#include "fakes/FakeTimers.h"
#include "fakes/ScriptedPump.h"

#include <QMap>
#include <QStringList>

/// Records every box and answers with the next answer set, or OK.
class FakePrompts final : public Prompts
{
public:
    long Show(const QString &text, long flags, const QString &title) override;

    struct Box
    {
        QString strText;
        long lFlags = 0;
        QString strTitle;
    };
    QList<Box> aBoxes;
    QList<long> aAnswers;

    /// Texts of all boxes so far.
    QStringList Texts() const;
};

/// GUIDs that count up: 000...001, 000...002; none when `bFails`.
class FakeIds final : public Ids
{
public:
    QByteArray NewGuid() override;
    bool bFails = false;

private:
    int lNext = 0;
};

/// Folders below one that the test owns.
class FakeFolders final : public Folders
{
public:
    QString CommonAppData() const override { return strRoot + QStringLiteral("/common"); }
    QString UserAppData() const override { return strRoot + QStringLiteral("/user"); }
    QString Program() const override { return strRoot + QStringLiteral("/program"); }
    QString strRoot;
};

class FakeShell final : public Shell
{
public:
    int Open(const QString &file, const QString &verb, const QStringList &parameters, const QString &folder,
             int show) override;
    struct Call
    {
        QString strFile, strVerb;
        QStringList aParameters;
        QString strFolder;
        int lShow = 0;
    };
    QList<Call> aCalls;
    int lResult = 42;
};

class FakeSound final : public Sound
{
public:
    int DeviceCount() const override { return lDevices; }
    void Play(const QString &path) override { aPlayed.append(path); }
    int lDevices = 1;
    QStringList aPlayed;
};

/// Blocks inside this process; they live as long as somebody holds them.
class FakeSharedBlocks final : public SharedBlocks
{
public:
    std::unique_ptr<SharedBlock> Open(const QString &name, int size, int &errorCode) override;
    int lFailure = 0; ///< code of the next failures; 0 for none

private:
    QMap<QString, std::weak_ptr<QByteArray>> blocks;
};

class FakeInstance final : public Instance
{
public:
    bool TakeLock(const QString &name) override
    {
        aLocks.append(name);
        return bFirst;
    }
    qlonglong PublishWindow() override { return 4711; }
    void RaiseWindow(qlonglong window) override { aRaised.append(window); }
    bool bFirst = true;
    QStringList aLocks;
    QList<qlonglong> aRaised;
};

/// All ports as fakes, wired together.
struct FakePorts
{
    FakeClock clock;
    FakeTimers timers;
    ScriptedPump pump{clock, timers};
    FakePrompts prompts;
    Message message{prompts};
    FakeIds ids;
    FakeFolders folders;
    FakeShell shell;
    FakeSound sound;
    FakeSharedBlocks blocks;
    FakeInstance instance;
    FakeSockets sockets;
    Ports ports{pump, timers, clock, ids, message, folders, shell, sound, blocks, instance, sockets};
};
