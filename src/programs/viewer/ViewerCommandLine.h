#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

/// What the viewer was started for: "/Brenmot" and a path, as the client does, or a bare path.
struct ViewerCommandLine
{
    Q_DECLARE_TR_FUNCTIONS(ViewerCommandLine)

public:
    QString strPath;    ///< empty when no file was named
    QString strProblem; ///< a sentence; empty when the line can be understood
    bool bHelp = false;
    bool bVersion = false;

    /// `arguments` without the program's own name.
    static ViewerCommandLine Read(const QStringList &arguments);
    static QString Help();
};
