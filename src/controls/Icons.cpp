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

#include <array>

/// The pictures of a static library are dropped unless somebody asks for them.
static void InitPictures()
{
    Q_INIT_RESOURCE(mailbox);
}

namespace {

/// The colour in the files that stands for the text colour of the desktop.
constexpr char strInk[] = "#57606a";
constexpr char strMark[] = "\"#fff\""; ///< the mark on a filled shape
constexpr std::array aAccents{"#2f7bd1", "#2c974b", "#d1342f", "#c77700"};
constexpr int lBrighter = 130; // percent
constexpr double dDisabledOpacity = 0.4;

class SymbolEngine final : public QIconEngine
{
public:
    SymbolEngine(QString imageKey, QByteArray picture, bool isInMenu)
        : strKey(std::move(imageKey))
        , abPicture(std::move(picture))
        , bInMenu(isInMenu)
    {
    }

    /// From the cache: a list shows the same icon in each of its rows.
    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        painter->drawPixmap(rect, pixmap(rect.size() * painter->device()->devicePixelRatioF(), mode, state));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        const QString name = QString(bInMenu ? "velmar menu %1 %2 %3 %4" : "velmar %1 %2 %3 %4")
                                 .arg(strKey, InkName(IsOnHighlight(mode)), QString::number(mode),
                                      QString::number(size.width()));
        QPixmap pixmap;
        if (QPixmapCache::find(name, &pixmap))
            return pixmap;
        pixmap = QPixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setOpacity(mode == QIcon::Disabled ? dDisabledOpacity : 1.0);
        QSvgRenderer(Inked(IsOnHighlight(mode))).render(&painter, QRect(QPoint(), size));
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
    /// A menu draws the item under the pointer as active, on the highlight.
    bool IsOnHighlight(QIcon::Mode mode) const
    {
        return mode == QIcon::Selected || (bInMenu && mode == QIcon::Active);
    }

    /// On a highlight everything is drawn in its text colour: no accent reads on all of them.
    QByteArray Inked(bool onHighlight) const
    {
        QString picture = QString::fromLatin1(abPicture);
        static const QRegularExpression anyColor("#[0-9a-f]{6}");
        if (onHighlight)
            picture.replace(anyColor, InkName(true))
                .replace(strMark, '"' + QGuiApplication::palette().color(QPalette::Highlight).name() + '"');
        else
            Brighten(picture.replace(strInk, InkName(false)));
        return picture.toLatin1();
    }

    /// The accents are made for light; dark wants them brighter.
    static void Brighten(QString &picture)
    {
        if (QGuiApplication::palette().color(QPalette::Window).lightness() > 127)
            return;
        for (const char *accent : aAccents)
            picture.replace(accent, QColor(accent).lighter(lBrighter).name());
    }

    static QString InkName(bool onHighlight)
    {
        return QGuiApplication::palette()
            .color(onHighlight ? QPalette::HighlightedText : QPalette::WindowText)
            .name();
    }

    QString strKey;
    QByteArray abPicture;
    bool bInMenu;
};

QIcon GetFrom(QHash<QString, QIcon> &icons, const QString &imageKey, bool isInMenu)
{
    if (imageKey.isEmpty())
        return {};
    const auto known = icons.constFind(imageKey);
    if (known != icons.constEnd())
        return *known;
    InitPictures();
    QFile file(":/icons/" + imageKey + ".svg");
    QIcon icon;
    if (file.open(QIODevice::ReadOnly))
        icon = QIcon(new SymbolEngine(imageKey, file.readAll(), isInMenu));
    return *icons.insert(imageKey, icon);
}

} // namespace

QIcon Icons::Get(const QString &imageKey)
{
    static QHash<QString, QIcon> icons;
    return GetFrom(icons, imageKey, false);
}

QIcon Icons::GetForMenu(const QString &imageKey)
{
    static QHash<QString, QIcon> icons;
    return GetFrom(icons, imageKey, true);
}
