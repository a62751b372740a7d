#pragma once

#include <QString>

/// The program's name and version and that of the library that reads the faxes, for the about box.
QString GetAboutText(const QString &programVersion);
