#include "fakes/FakePorts.h"

#include <QtEndian>

long FakePrompts::Show(const QString &text, long flags, const QString &title)
{
    aBoxes.append({text, flags, title});
    return aAnswers.isEmpty() ? mbAnswerOK : aAnswers.takeFirst();
}

QString FakePrompts::AskText(const QString &prompt, const QString &title)
{
    aAsked.append(title + '|' + prompt);
    return aTyped.isEmpty() ? QString() : aTyped.takeFirst();
}

QStringList FakePrompts::Texts() const
{
    QStringList texts;
    for (const Box &box : aBoxes)
        texts.append(box.strText);
    return texts;
}

QByteArray FakeIds::NewGuid()
{
    if (bFails)
        return {};
    QByteArray bytes(16, '\0');
    qToBigEndian(++lNext, bytes.data() + 12);
    return bytes;
}

int FakeShell::Open(const QString &file, const QString &verb, const QStringList &parameters,
                    const QString &folder, int show)
{
    aCalls.append({file, verb, parameters, folder, show});
    return lResult;
}

namespace {
class FakeBlock final : public SharedBlock
{
public:
    FakeBlock(std::shared_ptr<QByteArray> bytes, bool existed)
        : bytes(std::move(bytes))
        , bExisted(existed)
    {
    }
    bool Existed() const override { return bExisted; }
    bool IsHeldElsewhere() const override { return bytes.use_count() > 1; }
    char *Bytes() override { return bytes->data(); }
    int Size() const override { return static_cast<int>(bytes->size()); }

private:
    std::shared_ptr<QByteArray> bytes;
    bool bExisted;
};
} // namespace

std::unique_ptr<SharedBlock> FakeSharedBlocks::Open(const QString &name, int size, int &errorCode)
{
    if (lFailure != 0) {
        errorCode = lFailure;
        return nullptr;
    }
    std::shared_ptr<QByteArray> bytes = blocks.value(name).lock();
    const bool existed = bytes != nullptr;
    if (!existed) {
        bytes = std::make_shared<QByteArray>(size, '\0');
        blocks.insert(name, bytes);
    }
    return std::make_unique<FakeBlock>(bytes, existed);
}

namespace {
class FakeRunningProgram final : public RunningProgram
{
public:
    explicit FakeRunningProgram(FakeShell::Program &started)
        : program(started)
    {
    }
    bool IsRunning() override { return program.bRunning; }
    void Kill() override
    {
        program.bRunning = false;
        program.bKilled = true;
    }

private:
    FakeShell::Program &program;
};
} // namespace

std::unique_ptr<RunningProgram> FakeShell::Start(const QString &file, const QStringList &)
{
    aStarted.append(file);
    program = {};
    return bStarts ? std::make_unique<FakeRunningProgram>(program) : nullptr;
}
