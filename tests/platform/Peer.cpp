// A second process for the tests: does what its first argument says, tells it on its output, line by line,
// and stays until its input ends.
#include "platform/SystemInstance.h"
#include "platform/SystemSharedBlocks.h"

#include <QCoreApplication>

#include <cstring>
#include <iostream>
#include <string>

namespace {
void Say(const std::string &line)
{
    std::cout << line << std::endl;
}

void WaitForEndOfInput()
{
    std::string line;
    while (std::getline(std::cin, line))
        continue;
}

/// block NAME SIZE [TEXT]: says whether the block existed, and its text; then writes TEXT.
int HoldBlock(const QStringList &arguments)
{
    SystemSharedBlocks blocks;
    int errorCode = 0;
    const auto block = blocks.Open(arguments.value(2), arguments.value(3).toInt(), errorCode);
    if (!block)
        return errorCode;
    Say((block->Existed() ? "existed " : "new ") + std::string(block->Bytes()));
    const QByteArray text = arguments.value(4).toUtf8();
    if (!text.isEmpty()) {
        std::strcpy(block->Bytes(), text.constData());
        Say("written");
    }
    WaitForEndOfInput();
    return 0;
}

int HoldLock(const QStringList &arguments)
{
    SystemInstance instance;
    Say(instance.TakeLock(arguments.value(2)) ? "taken" : "busy");
    WaitForEndOfInput();
    return 0;
}

int Raise(const QStringList &arguments)
{
    SystemInstance().RaiseWindow(arguments.value(2).toLongLong());
    return 0;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString task = arguments.value(1);
    if (task == "block")
        return HoldBlock(arguments);
    if (task == "lock")
        return HoldLock(arguments);
    if (task == "raise")
        return Raise(arguments);
    return 64;
}
