#include "controls/RememberedSize.h"

#include "core/Globals.h"
#include "core/SettingsFile.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>

namespace {

constexpr QSize frameSize(12, 36); ///< about what a window manager draws around a window

class SizeKeeper final : public QObject
{
public:
    explicit SizeKeeper(QWidget &keptWindow)
        : QObject(&keptWindow)
        , window(keptWindow)
    {
        window.installEventFilter(this);
    }

    void Restore()
    {
        const QSize stored(Read("_Width"), Read("_Height"));
        const QSize designed = window.testAttribute(Qt::WA_Resized) ? window.size() : window.sizeHint();
        const QSize size = stored.isEmpty() ? designed : stored;
        window.resize(size.boundedTo(window.screen()->availableSize() - frameSize)
                          .expandedTo(window.minimumSizeHint()));
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Hide && !event->spontaneous() && !window.isMaximized())
            Store();
        return false;
    }

private:
    int Read(const QString &dimension) const
    {
        return ReadIniValue(Global().strUserName, window.objectName() + dimension, Global().strIniFile)
            .toInt();
    }

    /// A size that cannot be stored is only forgotten.
    void Store() const
    {
        WriteIniValues(Global().strUserName,
                       {{window.objectName() + "_Width", QString::number(window.width())},
                        {window.objectName() + "_Height", QString::number(window.height())}},
                       Global().strIniFile);
    }

    QWidget &window;
};

} // namespace

void RememberSize(QWidget &window)
{
    (new SizeKeeper(window))->Restore();
}
