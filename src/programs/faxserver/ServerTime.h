#pragma once

#include <QDateTime>
#include <QString>

/// Points in time as the server stores and tells them.
namespace ServerTime {

inline const QString strForm = "yyyy-MM-dd HH:mm:ss";

inline QString TextOf(const QDateTime &time)
{
    return time.toString(strForm);
}

inline QString Now()
{
    return TextOf(QDateTime::currentDateTime());
}

} // namespace ServerTime
