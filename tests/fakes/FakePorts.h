#pragma once

#include "core/Message.h"
#include "core/ports/FileDialogs.h"
#include "core/ports/Folders.h"
#include "core/ports/FontDialogs.h"
#include "core/ports/Ids.h"
#include "core/ports/Instance.h"
#include "core/ports/Ports.h"
#include "core/ports/Printers.h"
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
    QString AskText(const QString &prompt, const QString &title) override;

    struct Box
    {
        QString strText;
        long lFlags = 0;
        QString strTitle;
    };
    QList<Box> aBoxes;
    QList<long> aAnswers;
    QStringList aAsked; ///< "title|prompt"
    QStringList aTyped; ///< the next answers; without one the user cancels

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
    std::unique_ptr<RunningProgram> Start(const QString &file, const QStringList &parameters) override;
    QList<Call> aCalls;
    int lResult = 42;

    /// What `Start` starts: runs until the test ends it, or it is killed.
    struct Program
    {
        bool bRunning = true;
        bool bKilled = false;
    };
    QStringList aStarted;
    Program program;
    bool bStarts = true;
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

/// Records what was offered and answers with the next choice set, or cancels.
class FakeFileDialogs final : public FileDialogs
{
public:
    QString ChooseFile(const FileDialogSetup &setup) override { return Choose("open", setup).value(0); }
    QStringList ChooseFiles(const FileDialogSetup &setup) override { return Choose("open several", setup); }
    QString ChooseTarget(const FileDialogSetup &setup) override { return Choose("save", setup).value(0); }

    struct Call
    {
        QString strKind;
        FileDialogSetup setup;
    };
    QList<Call> aCalls;
    QList<QStringList> aChosen;

private:
    QStringList Choose(const QString &kind, const FileDialogSetup &setup)
    {
        aCalls.append({kind, setup});
        return aChosen.isEmpty() ? QStringList() : aChosen.takeFirst();
    }
};

class FakeFontDialogs final : public FontDialogs
{
public:
    std::optional<FontChoice> ChooseFont(const FontChoice &current) override
    {
        aOffered.append(current);
        return chosen;
    }
    QList<FontChoice> aOffered;
    std::optional<FontChoice> chosen;
};

class FakePrinters final : public Printers
{
public:
    bool Has(const QString &deviceName) const override { return aNames.contains(deviceName); }
    QStringList aNames{QStringLiteral("Zem Fax Printer")};
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
    FakeFileDialogs fileDialogs;
    FakeFontDialogs fontDialogs;
    FakePrinters printers;
    Ports ports{pump,  timers, clock,    ids,     message,     folders,     shell,
                sound, blocks, instance, sockets, fileDialogs, fontDialogs, printers};
};
