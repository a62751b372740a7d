#include "compose/SendOptions.h"

#include "core/Globals.h"
#include "core/Utilities.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr QChar separator(u'\2');
constexpr QLatin1StringView lineBreak("\r\n");

int WholePart(const QString &text)
{
    constexpr double lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::trunc(NumericPrefix(text)), lowest, highest));
}

} // namespace

FaxDefaults FaxDefaults::FromSettings()
{
    const Globals &global = Global();
    return {global.Resolve,        global.Deepness,           global.ServerResolve,
            global.ServerDeepness, global.lServerResendTimes, global.lServerTryInterval};
}

SendOptions SendOptions::Parse(const QString &packed)
{
    if (packed.isEmpty())
        return {};
    const QStringList fields = packed.split(separator);
    return {fields.value(0), fields.value(1), fields.value(2), fields.value(3),
            fields.value(4), fields.value(5), fields.value(6)};
}

QString SendOptions::Pack() const
{
    QString packed;
    for (const QString &field :
         {strTiming, strImportance, strBusyResend, strResending, strPixel, strDeepness, strImagePrint})
        packed += field + separator;
    return packed;
}

QString SendOptions::PackResending(const QString &interval, const QString &times)
{
    return interval + lineBreak + times;
}

SendOptions SendOptions::FromRow(const clsStatement &row)
{
    constexpr int unreadable = 0;
    SendOptions options;
    options.strTiming = row.Text("TimingSend");
    options.strImportance = row.Text("FaxLevel");
    options.strBusyResend = row.Text("busyResend");
    if (!ReadsAsTrue(row.Text("IsDontRetry")))
        options.strResending = PackResending(row.Text("RetryInterval"), row.Text("ResendTimes"));
    options.strPixel = row.Text("Resolution");
    options.strDeepness = row.Text("Deepness");
    if (options.Deepness() == unreadable)
        options.strDeepness = "150";
    return options;
}

bool SendOptions::IsSentAtOnce() const
{
    const double number = NumericPrefix(strTiming);
    return number == 0 || number == -1;
}

/// "-1" means never only when it is the whole field: "-1" and a line break is the server's one minute.
Resending SendOptions::ReadResending() const
{
    if (strResending == "-1")
        return {};
    const QStringList numbers = strResending.split(lineBreak);
    return {false, WholePart(numbers.value(0)), WholePart(numbers.value(1))};
}

int SendOptions::Importance() const
{
    return ToNumber(strImportance);
}

int SendOptions::Pixel() const
{
    return ToNumber(strPixel);
}

int SendOptions::Deepness() const
{
    return ToNumber(strDeepness);
}

int SendOptions::ImagePrint() const
{
    return WholePart(strImagePrint);
}
