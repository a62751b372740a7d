#include "controls/Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QRegularExpression>
#include <QSvgRenderer>

/// The pictures of a static library are dropped unless somebody asks for them.
static void InitPictures()
{
    Q_INIT_RESOURCE(mailbox);
}

namespace {

/// The colour in the files that stands for the text colour of the desktop.
constexpr char strInk[] = "#57606a";
constexpr double dDisabledOpacity = 0.4;

class SymbolEngine final : public QIconEngine
{
public:
    SymbolEngine(QString imageKey, QByteArray picture)
        : strKey(std::move(imageKey))
        , abPicture(std::move(picture))
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        QSvgRenderer renderer(Inked(mode));
        painter->save();
        painter->setOpacity(mode == QIcon::Disabled ? dDisabledOpacity : 1.0);
        renderer.render(painter, rect);
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        const QString name =
            QString("velmar %1 %2 %3 %4")
                .arg(strKey, InkName(mode), QString::number(mode), QString::number(size.width()));
        QPixmap pixmap;
        if (QPixmapCache::find(name, &pixmap))
            return pixmap;
        pixmap = QPixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        QPixmapCache::insert(name, pixmap);
        return pixmap;
    }

    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal) override
    {
        return pixmap(size, mode, state);
    }

    QIconEngine *clone() const override { return new SymbolEngine(*this); }
    QString key() const override { return "velmar"; }
    bool isNull() override { return false; }

private:
    /// On a selection everything is drawn in its text colour: no accent reads on all highlights.
    QByteArray Inked(QIcon::Mode mode) const
    {
        QString picture = QString::fromLatin1(abPicture);
        static const QRegularExpression anyColor("#[0-9a-f]{6}");
        if (mode == QIcon::Selected)
            picture.replace(anyColor, InkName(mode));
        else
            picture.replace(strInk, InkName(mode));
        return picture.toLatin1();
    }

    static QString InkName(QIcon::Mode mode)
    {
        const bool isSelected = mode == QIcon::Selected;
        return QGuiApplication::palette()
            .color(isSelected ? QPalette::HighlightedText : QPalette::WindowText)
            .name();
    }

    QString strKey;
    QByteArray abPicture;
};

} // namespace

QIcon Icons::Get(const QString &imageKey)
{
    static QHash<QString, QIcon> icons;
    if (imageKey.isEmpty())
        return {};
    const auto known = icons.constFind(imageKey);
    if (known != icons.constEnd())
        return *known;
    InitPictures();
    QFile file(":/icons/" + imageKey + ".svg");
    QIcon icon;
    if (file.open(QIODevice::ReadOnly))
        icon = QIcon(new SymbolEngine(imageKey, file.readAll()));
    return *icons.insert(imageKey, icon);
}
