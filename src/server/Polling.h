#pragma once

#include <QObject>
#include <QString>

#include <functional>

class FaxDownload;
class Forms;
class Session;
struct Ports;

/// What the session does by itself once a second: the periodic fetch, the idle logout, and the composer on a
/// fax file that a second copy of the program was started with.
class Polling final : public QObject
{
    Q_OBJECT

public:
    /// Takes the waiting fax file out of its place; empty for none.
    using TakeFaxFile = std::function<QString()>;

    Polling(const Ports &ports, Session &session, FaxDownload &faxDownload, Forms &forms,
            TakeFaxFile takeFaxFile);

    void OnCheckFaxTick();

private:
    void CheckForFaxes();
    void LogOutWhenIdle();
    void OpenFaxFile();
    bool IsMainWindowAlone() const;

    const Ports &ports;
    Session &session;
    FaxDownload &faxDownload;
    Forms &forms;
    TakeFaxFile takeFaxFile;
};
