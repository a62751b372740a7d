#include "ViewerCommandLine.h"
#include "ViewerWindow.h"
#include "controls/Icons.h"

#include <QApplication>

#include <cstdio>

namespace {

/// Before there is an application: these need no screen.
bool AnswerOnConsole(int argc, char *argv[])
{
    QStringList arguments;
    for (int at = 1; at < argc; ++at)
        arguments.append(QString::fromLocal8Bit(argv[at]));
    const ViewerCommandLine line = ViewerCommandLine::Read(arguments);
    if (line.bHelp)
        std::fputs(qPrintable(ViewerCommandLine::Help()), stdout);
    else if (line.bVersion)
        std::puts("VelmarBrowser.exe " VELMAR_VERSION);
    return line.bHelp || line.bVersion;
}

} // namespace

int main(int argc, char *argv[])
{
    if (AnswerOnConsole(argc, argv))
        return 0;
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Velmar Client Viewer"));
    QApplication::setApplicationVersion(QStringLiteral(VELMAR_VERSION));
    QApplication::setWindowIcon(Icons::Get(QStringLiteral("imgProgram")));

    const ViewerCommandLine line = ViewerCommandLine::Read(application.arguments().mid(1));
    if (!line.strProblem.isEmpty()) {
        std::fprintf(stderr, "VelmarBrowser.exe: %s\n", qPrintable(line.strProblem));
        return 2;
    }
    ViewerWindow window;
    if (!line.strPath.isEmpty())
        window.Open(line.strPath);
    window.show();
    return QApplication::exec();
}
