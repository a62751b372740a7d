#include "compose/SendOptionChoices.h"

#include "core/Utilities.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int quarterHour = 15; ///< minutes
constexpr QLatin1StringView midnight("00:00");

/// What counts as 0 among dates.
const QDate unreadableDate(1899, 12, 30);

QString Translate(const char *text)
{
    return QCoreApplication::translate("compose", text);
}

QString ServerPixels(const FaxDefaults &defaults)
{
    return defaults.lServerResolve == 0 ? Translate("(204 x 196 dpi)") : Translate("(204 x 98 dpi)");
}

int ToNumberBox(int number)
{
    const qint64 size = std::abs(static_cast<qint64>(number));
    return static_cast<int>(std::min<qint64>(size, SendOptionChoices::HighestNumber));
}

int ToSlider(int deepness)
{
    return std::clamp(deepness, SendOptionChoices::LowestDeepness, SendOptionChoices::HighestDeepness);
}

/// The number of a radio button; one that does not exist chooses nothing.
void Choose(int &choice, int wanted, int count)
{
    if (wanted >= 0 && wanted < count)
        choice = wanted;
}

bool IsTimeOfDay(const QString &text)
{
    return !text.trimmed().isEmpty() && ToDateTime("2000-01-01 " + text.trimmed()).isValid();
}

void LoadTiming(SendOptionChoices &choices, const SendOptions &options)
{
    if (options.IsSentAtOnce())
        return;
    const QStringList parts = options.strTiming.split(QStringLiteral("\r\n"));
    const QDate date = ToDateTime(parts.value(0)).date();
    choices.bSendTime = true;
    choices.date = date.isValid() ? date : unreadableDate;
    choices.strTime = parts.value(1);
}

void LoadResending(SendOptionChoices &choices, const SendOptions &options)
{
    const Resending resending = options.ReadResending();
    if (resending.bNever) {
        choices.resend = SendOptionChoices::rsNever;
        return;
    }
    choices.resend = resending.lInterval < 0 ? SendOptionChoices::rsServer : SendOptionChoices::rsOwn;
    choices.lDelay = ToNumberBox(resending.lInterval);
    choices.lTryTime = ToNumberBox(resending.lTimes);
}

/// 0 stands for the user's default, which may be the server's value in its turn.
void LoadDeepness(SendOptionChoices &choices, const SendOptions &options, const FaxDefaults &defaults)
{
    const int stored = options.Deepness();
    const int deepness = stored == 0 ? defaults.lDeepness : stored;
    if (deepness == -1)
        choices.SetServerDeepness(true, defaults);
    else
        choices.SetDeepness(deepness);
}

QString PackResend(const SendOptionChoices &choices, const FaxDefaults &defaults)
{
    const qint64 delay = choices.lDelay;
    switch (choices.resend) {
    case SendOptionChoices::rsServer:
        return SendOptions::PackResending(QString::number(-delay),
                                          QString::number(-qint64(defaults.lServerResendTimes)));
    case SendOptionChoices::rsOwn: // the user's number of attempts is not in the format
        return SendOptions::PackResending(QString::number(delay),
                                          QString::number(-qint64(defaults.lServerTryInterval)));
    default:
        return QStringLiteral("-1");
    }
}

} // namespace

SendOptionChoices SendOptionChoices::Load(const QString &strSendOption, int fixedResolution,
                                          const FaxDefaults &defaults, const QDateTime &now)
{
    SendOptionChoices choices;
    choices.date = now.date();
    choices.strTime = DefaultTime(now.time());
    choices.strServerPixel = Translate("&Same as server setting") + ServerPixels(defaults);
    Choose(choices.lPixel, defaults.lResolve, Pixels);
    if (!strSendOption.isEmpty()) {
        const SendOptions options = SendOptions::Parse(strSendOption);
        LoadTiming(choices, options);
        Choose(choices.lImportance, options.Importance(), Importances);
        LoadResending(choices, options);
        Choose(choices.lPixel, options.Pixel(), Pixels);
        LoadDeepness(choices, options, defaults);
        Choose(choices.lImagePrint, options.ImagePrint(), ImagePrints);
        choices.strServerPixel = Translate("Use server setting ") + ServerPixels(defaults);
    }
    choices.bPixelFixed = fixedResolution > 0;
    if (choices.bPixelFixed)
        choices.lPixel = fixedResolution == 2 ? 1 : 2;
    return choices;
}

std::optional<QString> SendOptionChoices::Store(const FaxDefaults &defaults, const QDateTime &now) const
{
    SendOptions options;
    if (bSendTime) {
        const QString day = date.toString(Qt::ISODate);
        const QString time = IsTimeOfDay(strTime) ? strTime : midnight;
        const QDateTime sending = ToDateTime(day + ' ' + time.trimmed());
        if (!sending.isValid() || sending < now)
            return std::nullopt;
        options.strTiming = day + "\r\n" + time + "\r\n";
    }
    options.strImportance = QString::number(lImportance);
    options.strResending = PackResend(*this, defaults);
    options.strPixel = QString::number(lPixel);
    options.strDeepness = QString::number(bServerDeepness ? -1 : lDeepness);
    options.strImagePrint = QString::number(lImagePrint);
    return options.Pack();
}

void SendOptionChoices::SetServerDeepness(bool server, const FaxDefaults &defaults)
{
    bServerDeepness = server;
    lDeepness = server ? ToSlider(defaults.lServerDeepness) : lOwnDeepness;
}

void SendOptionChoices::SetDeepness(int value)
{
    lDeepness = ToSlider(value);
    if (!bServerDeepness)
        lOwnDeepness = lDeepness;
}

QStringList SendOptionChoices::QuarterHours()
{
    QStringList times;
    for (QTime time(0, 0); times.isEmpty() || time != QTime(0, 0); time = time.addSecs(quarterHour * 60))
        times.append(time.toString(QStringLiteral("HH:mm")));
    return times;
}

/// The quarter of an hour that comes next; on the quarter itself, the last one of the hour. Hours stand
/// without a leading zero, but for "00" after the 23rd.
QString SendOptionChoices::DefaultTime(const QTime &now)
{
    const int minute = now.minute();
    if (minute <= 3 * quarterHour) {
        const int next = minute % quarterHour == 0 && minute > 0 ? 3 : minute / quarterHour + 1;
        return QStringLiteral("%1:%2").arg(now.hour()).arg(next * quarterHour);
    }
    return now.hour() == 23 ? midnight : QStringLiteral("%1:00").arg(now.hour() + 1);
}

QString SendOptionChoices::ServerText(Resend resend, const FaxDefaults &defaults)
{
    if (resend != rsServer)
        return {};
    if (defaults.lServerResendTimes == 0)
        return Translate("(Never resend)");
    return Translate("( Interval: %1 / Attempt: %2 )")
        .arg(QString::number(defaults.lServerTryInterval), QString::number(defaults.lServerResendTimes));
}
