#include "CommandLine.h"

#include "ServerError.h"

#include <QCommandLineParser>
#include <QStandardPaths>

namespace {

constexpr int lMostCopies = 1000000;

int NumberOf(const QCommandLineParser &parser, const QString &option, int most)
{
    bool isNumber = false;
    const int number = parser.value(option).toInt(&isNumber);
    if (!isNumber || number < 0 || number > most)
        throw ServerError(QString("--%1 takes a number from 0 to %2.").arg(option, QString::number(most)));
    return number;
}

void AddOptions(QCommandLineParser &parser)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    parser.setApplicationDescription(
        "A small fax server for trying the client: it listens on this machine only.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        {"port", "Port to listen on; 0 takes a free one.", "number", "8750"},
        {"data", "Folder of the accounts and faxes, made when missing.", "folder",
         folder + "/velmar-faxserver"},
        {"seed", "Fills an empty data folder first: \"demo\" is a small office.", "name"},
        {"script", "Replaces single replies as the file says.", "file"},
        {"max-users", "How many users may be logged in; 0 for no limit.", "number", "0"},
        {"lines", "How many faxes may go out at once.", "number", "2"},
        {"line-seconds", "How long the simulated lines take for a page; 0 for no time at all.", "number",
         "1"},
        {"deliver", "Puts the fax files into the mailboxes of the users and ends.", "user,user"},
        {"copies", "How many times to deliver each file.", "number", "1"},
        {"add-user", "Adds an account, or replaces its password, and ends.", "name"},
        {"lock", "Locks the account that is added."},
        {"full-name", "The name of the account that is added.", "text"},
        {"department", "The id of its department.", "id"},
        {"publish", "Replaces the public groups, contacts or departments and ends.", "list"},
    });
    parser.addPositionalArgument("arguments", "The files to deliver, or the new account's password.",
                                 "[arguments...]");
}

AddressBook::List ListOf(const QString &name)
{
    const QStringList names{"groups", "contacts", "departments"};
    if (!names.contains(name))
        throw ServerError("--publish takes \"groups\", \"contacts\" or \"departments\", and a file.");
    return AddressBook::List(names.indexOf(name));
}

void ReadTask(const QCommandLineParser &parser, CommandLine &line)
{
    const QStringList rest = parser.positionalArguments();
    if (parser.isSet("deliver")) {
        line.task = CommandLine::taskDeliver;
        line.strLogin = parser.value("deliver");
        line.aFiles = rest;
        if (rest.isEmpty())
            throw ServerError("--deliver takes a user and at least one file.");
    } else if (parser.isSet("add-user")) {
        line.task = CommandLine::taskAddUser;
        line.strLogin = parser.value("add-user");
        if (rest.size() != 1 || line.strLogin.isEmpty())
            throw ServerError("--add-user takes a name and a password.");
        line.strPassword = rest.first();
        line.strFullName = parser.value("full-name");
        line.strDepartment = parser.value("department");
    } else if (parser.isSet("publish")) {
        line.task = CommandLine::taskPublish;
        line.list = ListOf(rest.size() == 1 ? parser.value("publish") : QString());
        line.aFiles = rest;
    } else if (!rest.isEmpty()) {
        throw ServerError(QString("\"%1\" is not understood; --help tells the options.").arg(rest.first()));
    }
}

} // namespace

CommandLine CommandLine::Read(const QStringList &arguments)
{
    QCommandLineParser parser;
    AddOptions(parser);
    if (!parser.parse(arguments))
        throw ServerError(parser.errorText() + "; --help tells the options.");
    if (parser.isSet("help"))
        parser.showHelp();
    if (parser.isSet("version"))
        parser.showVersion();
    CommandLine line;
    ReadTask(parser, line);
    line.settings.lPort = quint16(NumberOf(parser, "port", 65535));
    line.settings.lMostUsers = NumberOf(parser, "max-users", 1000);
    line.settings.lines.lLines = NumberOf(parser, "lines", 100);
    line.settings.lines.lPageSeconds = NumberOf(parser, "line-seconds", 86400);
    line.lCopies = NumberOf(parser, "copies", lMostCopies);
    line.bLock = parser.isSet("lock");
    line.strDataFolder = parser.value("data");
    if (parser.isSet("script"))
        line.settings.script = Script::Load(parser.value("script"));
    if (parser.isSet("seed") && parser.value("seed") != "demo")
        throw ServerError(QString("There is no seed \"%1\"; \"demo\" is one.").arg(parser.value("seed")));
    line.bSeedDemo = parser.isSet("seed");
    return line;
}
