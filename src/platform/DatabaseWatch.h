#pragma once

#include <QElapsedTimer>
#include <QObject>

/// Shows a busy pointer in all windows while the database has kept the event loop from turning for longer
/// than a moment. Needs the application object.
class DatabaseWatch final : public QObject
{
    Q_OBJECT

public:
    explicit DatabaseWatch(int milliseconds = 500);
    ~DatabaseWatch() override;

private:
    void Look();
    void Rest();

    const int lPatience;
    QElapsedTimer sinceWork; ///< invalid when the loop has turned since
    bool bShown = false;
};
