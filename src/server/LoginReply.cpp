#include "server/LoginReply.h"

#include "core/AnsiText.h"
#include "server/wire/clsClient.h"

#include <QCoreApplication>
#include <QStringList>

namespace {
constexpr char spokenVersion[] = "1.6 beta";
constexpr char defaultPort[] = "8750";

bool Holds(const QString &text, const QString &word)
{
    return text.contains(word, Qt::CaseInsensitive);
}
} // namespace

LoginReply LoginReply::Classify(const ClientReply &reply)
{
    const QString text = AnsiText::FromAnsi(reply.abData).replace(QChar(0), ',');
    const QString wholeText = text + "\r\n" + reply.strFileName;
    const QStringList lines = text.split("\r\n");
    LoginReply result;
    if (Holds(wholeText, "ERR")) {
        result.kind = lines.size() < 2 ? rplUnexpected : rplRefused;
        result.strCode = lines.value(1);
    } else if (lines.first().compare("Welcome", Qt::CaseInsensitive) == 0) {
        result.kind = lines.size() < 2 ? rplUnexpected : rplGreeting;
        result.strVersion = lines.value(1);
    } else if (Holds(wholeText, "OK")) {
        result.kind = rplAccepted;
    }
    return result;
}

QString LoginReply::RefusalText(const QString &code)
{
    const QString number = code.trimmed();
    if (number == "12")
        return QCoreApplication::translate("server", "The user has logged in.");
    if (number == "2")
        return QCoreApplication::translate("server", "Too many users logged in already.");
    if (number == "14")
        return QCoreApplication::translate("server", "The user is locked by Administrator");
    if (number == "1")
        return QCoreApplication::translate("server", "User name or password incorrect");
    return {};
}

QString LoginReply::SpokenVersion()
{
    return spokenVersion;
}

bool LoginReply::IsSpokenVersion(const QString &version)
{
    return version.compare(spokenVersion, Qt::CaseInsensitive) == 0;
}

ServerAddress ServerAddress::FromText(const QString &text)
{
    const qsizetype colon = text.indexOf(':');
    if (colon < 0)
        return {text.trimmed(), defaultPort};
    return {text.left(colon).trimmed(), text.mid(colon + 1).trimmed()};
}
