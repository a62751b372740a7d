#include "desktop/About.h"

#include "core/ProgramTitle.h"

#include <QCoreApplication>

#include <FreeImage.h>

QString GetAboutText(const QString &programVersion)
{
    return QString(programTitle) + " " + programVersion + "\r\n" +
           QCoreApplication::translate("desktop", "FreeImage Version: ") + FreeImage_GetVersion();
}
