#include "ViewerCommandLine.h"

namespace {

constexpr QLatin1StringView strOpenSwitch("/Brenmot");

bool IsOpenSwitch(const QString &argument)
{
    return argument.compare(strOpenSwitch, Qt::CaseInsensitive) == 0;
}

} // namespace

ViewerCommandLine ViewerCommandLine::Read(const QStringList &arguments)
{
    ViewerCommandLine line;
    QStringList rest = arguments;
    if (!rest.isEmpty() && (IsOpenSwitch(rest.first()) || rest.first() == "--")) {
        rest.removeFirst(); // whatever follows is a path
    } else if (!rest.isEmpty() && rest.first().startsWith('-')) {
        line.bHelp = rest.first() == "--help" || rest.first() == "-h";
        line.bVersion = rest.first() == "--version" || rest.first() == "-v";
        if (!line.bHelp && !line.bVersion)
            line.strProblem = tr("There is no option %1.").arg(rest.first());
        return line;
    }
    if (rest.size() > 1)
        line.strProblem = tr("Only one fax can be opened at a time.");
    else
        line.strPath = rest.value(0);
    return line;
}

QString ViewerCommandLine::Help()
{
    return tr("Shows a fax.\n"
              "\n"
              "VelmarBrowser.exe [FILE]\n"
              "VelmarBrowser.exe /Brenmot FILE   the same\n"
              "VelmarBrowser.exe -- FILE         the same, for a name that begins with \"-\"\n"
              "\n"
              "  --help     this text\n"
              "  --version  the program's version\n");
}
