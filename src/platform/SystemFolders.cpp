#include "platform/SystemFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace {
/// Absolute, without a slash at its end.
QString CleanFolder(const QString &path)
{
    if (path.isEmpty())
        return {};
    const QString clean = QDir::cleanPath(QDir(path).absolutePath());
    return clean == QLatin1String("/") ? QString() : clean;
}
} // namespace

QString SystemFolders::CommonAppData() const
{
    const QString dataHome = qEnvironmentVariable("VELMAR_DATA_HOME");
    if (!dataHome.isEmpty())
        return CleanFolder(dataHome);
    return CleanFolder(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
}

QString SystemFolders::UserAppData() const
{
    return CleanFolder(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
}

QString SystemFolders::Program() const
{
    return CleanFolder(QCoreApplication::applicationDirPath());
}
