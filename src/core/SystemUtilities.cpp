#include "core/Message.h"
#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/Shell.h"
#include "core/ports/Sound.h"

#include <QCoreApplication>
#include <QDate>
#include <QFileInfo>
#include <QOperatingSystemVersion>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <system_error>

namespace {

constexpr long interfaceErrorBase = 0x80040000;

/// Argument error of the program itself; the system has no text under this number.
constexpr long badArguments = 160;

} // namespace

bool ShellOpen(Shell &shell, const QString &file, const QString &verb, const QStringList &parameters,
               const QString &folder, int show)
{
    constexpr int lowestSuccess = 33;
    return shell.Open(file, verb, parameters, folder, show) >= lowestSuccess;
}

long GetWindowsVersion()
{
    struct Release
    {
        int lMajor, lMinor;
        long lCode;
    };
    static constexpr Release releases[] = {{4, 0, 4}, {4, 10, 2}, {4, 90, 3}, {5, 0, 5},
                                           {5, 1, 6}, {5, 2, 7},  {6, 0, 8}};
    const QOperatingSystemVersion system = QOperatingSystemVersion::current();
    if (system.type() != QOperatingSystemVersion::Windows)
        return 0;
    if (system >= QOperatingSystemVersion(QOperatingSystemVersion::Windows, 6, 1))
        return 9;
    const auto *found = std::find_if(std::begin(releases), std::end(releases), [&](const Release &release) {
        return release.lMajor == system.majorVersion() && release.lMinor == system.minorVersion();
    });
    return found == std::end(releases) ? 0 : found->lCode;
}

int DaysInMonth(int year, int month)
{
    return QDate(year, 1, 1).addMonths(month - 1).daysInMonth();
}

void PlaySoundFile(const QString &path, Sound &sound, Message &message)
{
    if (sound.DeviceCount() == 0)
        message.ShowMessage(QCoreApplication::translate("core", "No soundcard detected!"));
    else
        sound.Play(path);
}

void BugAssert(bool condition, const QString &text)
{
    if (condition)
        return;
    std::cerr << "BugAssert failed: " << text.toLocal8Bit().constData() << std::endl;
    std::abort();
}

void ApiRaise(long code)
{
    throw RaisedError(interfaceErrorBase + code, ProgramFileName() + QStringLiteral(".Windows"),
                      ApiError(code));
}

QString ApiError(long code)
{
    constexpr int longestMessage = 255;
    if (code == badArguments)
        return QStringLiteral("One or more arguments are not correct.");
    const std::string text = std::system_category().message(static_cast<int>(code));
    return QString::fromLocal8Bit(text.c_str()).left(longestMessage);
}

QString ProgramFileName()
{
    return QCoreApplication::instance() == nullptr
               ? QString()
               : QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
}
