#pragma once

#include <QString>

#include <stdexcept>

/// An error with the number, source and description that the program's messages show.
class RaisedError : public std::exception
{
public:
    RaisedError(long number, QString source, QString description);

    long Number() const { return lNumber; }
    const QString &Source() const { return strSource; }
    const QString &Description() const { return strDescription; }

    /// The description as UTF-8.
    const char *what() const noexcept override { return abWhat.constData(); }

private:
    long lNumber;
    QString strSource;
    QString strDescription;
    QByteArray abWhat;
};
