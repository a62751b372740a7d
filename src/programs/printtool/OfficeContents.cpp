#include "OfficeContents.h"

#include <QFileInfo>

QString OfficeEnding(const QString &path, const QByteArray &head)
{
    const QString ending = QFileInfo(path).suffix().toLower();
    if (head.startsWith("{\\rtf"))
        return QStringLiteral("rtf");
    if (head.startsWith("PK\3\4") || head.startsWith("\xd0\xcf\x11\xe0"))
        return ending;
    if (head.startsWith("%PDF-") || head.contains('\0'))
        return {};
    return ending == "htm" || ending == "html" ? QStringLiteral("html") : QStringLiteral("txt");
}
