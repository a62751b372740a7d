#pragma once

#include "PagePart.h"
#include "core/FaxImage.h"

#include <QImage>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QWaitCondition>

#include <array>
#include <memory>
#include <optional>

class DecodedPages;
class QThread;

/// Decodes and draws parts of pages beside the event loop. Whoever shows pages says which parts they want; a
/// newer list takes the place of the older one, so that nothing is drawn that nobody waits for any more.
class PageRenderer final : public QObject
{
    Q_OBJECT

public:
    /// In the order in which they are served.
    enum Urgency { Shown, Thumbnail, Ahead };

    PageRenderer();
    ~PageRenderer() override;

    /// Another file, or other contents of it. All wishes are dropped, and nothing more of the old one is
    /// told.
    void SetPages(const FaxPages &pages);
    void Want(Urgency urgency, const QList<PagePart> &parts);

signals:
    /// A null picture when the page cannot be read.
    void Rendered(const PagePart &part, const QImage &picture);

private:
    struct Done
    {
        PagePart part;
        QImage picture;
    };

    bool HasWish() const;
    PagePart TakeWish();
    void Work();
    void WorkOn(std::optional<DecodedPages> &decoded);
    void Deliver();

    QMutex mutex; ///< for all that follows
    QWaitCondition hasWork;
    FaxPages pages;
    int lFile = 0; ///< counts the calls of `SetPages`
    std::array<QList<PagePart>, 3> aWanted;
    std::optional<PagePart> inWork;
    QList<Done> aDone;
    bool bEnd = false;
    std::unique_ptr<QThread> thread;
};
