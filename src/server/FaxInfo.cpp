#include "server/FaxInfo.h"

#include "core/Utilities.h"
#include "core/clsDBcon.h"

#include <QDateTime>
#include <QStringList>

namespace {

QString SendTime(QString timing, const QDateTime &now)
{
    timing.replace("\r\n", " ");
    const QDateTime wanted = ToDateTime(timing.trimmed());
    const bool isLater = wanted.isValid() && wanted > now;
    return (isLater ? wanted : now).toString("yyyy-MM-dd HH:mm:ss");
}

/// The sign only tells whose values they are.
QString WithoutSign(const QString &number)
{
    return QString::number(qAbs(qint64(ToNumber(number))));
}

} // namespace

OutgoingFax OutgoingFax::FromRow(const clsStatement &row)
{
    return {.OuterReceiver = row.Text("OuterReceiver"),
            .InnerReceiver = row.Text("innerReceiver"),
            .TempReceiver = row.Text("TempReceiver"),
            .Title = row.Text("Title"),
            .FileName = row.Text("FileName"),
            .Pages = row.Text("Pages"),
            .FaxLevel = row.Text("FaxLevel"),
            .ReMark = row.Text("ReMark"),
            .timingSend = row.Text("timingSend"),
            .resendTimes = row.Text("resendTimes"),
            .reTryInterval = row.Text("reTryInterval"),
            .originalSender = row.Text("originalSender"),
            .isDontRetry = row.Text("isDontRetry")};
}

QString FaxInfo(const OutgoingFax &fax, const QDateTime &now, const QString &userID)
{
    // Despite its name the flag says that the fax has values of its own and the server's do not count.
    const bool hasOwnRetries = ReadsAsTrue(fax.isDontRetry);
    const QStringList fields{fax.OuterReceiver,
                             fax.Title,
                             fax.FileName,
                             fax.Pages,
                             fax.FaxLevel,
                             fax.ReMark,
                             SendTime(fax.timingSend, now),
                             fax.InnerReceiver + fax.TempReceiver,
                             hasOwnRetries ? WithoutSign(fax.resendTimes) : "0",
                             hasOwnRetries ? WithoutSign(fax.reTryInterval) : "0",
                             fax.originalSender.isEmpty() ? userID : fax.originalSender};
    return fields.join(QChar(0));
}
