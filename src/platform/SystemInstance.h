#pragma once

#include "core/ports/Instance.h"

#include <QMap>

#include <memory>

class FileDescriptor;
class QLocalServer;
class QLocalSocket;

/// Locks are locked files in the user's runtime folder; windows are called over a local socket that is named
/// after the user and the process. Only processes of the same user are obeyed.
class SystemInstance final : public Instance
{
    Q_OBJECT

public:
    SystemInstance();
    ~SystemInstance() override;

    bool TakeLock(const QString &name) override;
    /// The number is this process's id; 0 when the channel could not be opened.
    qlonglong PublishWindow() override;
    void RaiseWindow(qlonglong window) override;

private:
    void OnConnection();
    void OnRequest(QLocalSocket *caller);

    QMap<QString, std::shared_ptr<FileDescriptor>> locks;
    std::unique_ptr<QLocalServer> server;
};
