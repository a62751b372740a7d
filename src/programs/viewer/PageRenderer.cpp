#include "PageRenderer.h"

#include "DecodedPages.h"
#include "controls/PagePainter.h"

#include <QMutexLocker>
#include <QPainter>
#include <QThread>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {

bool LiesOnItsSide(int rotation)
{
    return rotation % 180 != 0;
}

/// The same part of the page as it lies in the file.
QRect UprightRect(const PagePart &part)
{
    const QRect &rect = part.rect;
    const int right = part.size.width() - rect.x() - rect.width();
    const int below = part.size.height() - rect.y() - rect.height();
    switch (part.lRotation) {
    case 90:
        return {rect.y(), right, rect.height(), rect.width()};
    case 180:
        return {right, below, rect.width(), rect.height()};
    case 270:
        return {below, rect.x(), rect.height(), rect.width()};
    default:
        return rect;
    }
}

/// The picture of a part is turned, not the page: that costs as little as the part is small.
QImage Render(const PageBits &page, const PagePart &part)
{
    if (page.IsEmpty())
        return {};
    const QSize size = LiesOnItsSide(part.lRotation) ? part.size.transposed() : part.size;
    const QRect rect = UprightRect(part);
    // An enlarged page is smooth up to the part's edge when its neighbours' pixels are known.
    const int around = std::max(size.width() / page.lWidth, size.height() / page.lHeight) + 1;
    QImage picture(rect.size(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    PagePainter(false).Paint(painter, page, QRectF(-rect.topLeft(), size),
                             picture.rect().adjusted(-around, -around, around, around), true);
    painter.end();
    return part.lRotation == 0 ? picture : picture.transformed(QTransform().rotate(part.lRotation));
}

} // namespace

PageRenderer::PageRenderer()
    : thread(QThread::create([this] { Work(); }))
{
    thread->start();
}

PageRenderer::~PageRenderer()
{
    {
        const QMutexLocker lock(&mutex);
        bEnd = true;
        hasWork.wakeAll();
    }
    thread->wait();
}

void PageRenderer::SetPages(const FaxPages &shownPages)
{
    const QMutexLocker lock(&mutex);
    pages = shownPages;
    ++lFile;
    aDone.clear();
    for (QList<PagePart> &parts : aWanted)
        parts.clear();
}

/// What is being drawn, or about to be told, is not drawn twice.
void PageRenderer::Want(Urgency urgency, const QList<PagePart> &parts)
{
    const QMutexLocker lock(&mutex);
    const auto isUnderWay = [this](const PagePart &part) {
        return inWork == part || std::any_of(aDone.begin(), aDone.end(),
                                             [&part](const Done &done) { return done.part == part; });
    };
    QList<PagePart> wanted = parts;
    wanted.removeIf(isUnderWay);
    aWanted[urgency] = wanted;
    hasWork.wakeAll();
}

bool PageRenderer::HasWish() const
{
    return std::any_of(aWanted.begin(), aWanted.end(), [](const auto &parts) { return !parts.isEmpty(); });
}

PagePart PageRenderer::TakeWish()
{
    return std::find_if(aWanted.begin(), aWanted.end(), [](const auto &parts) { return !parts.isEmpty(); })
        ->takeFirst();
}

// Beside the event loop

void PageRenderer::Work()
{
    std::optional<DecodedPages> decoded;
    int lFileOfDecoded = 0;
    QMutexLocker lock(&mutex);
    for (;;) {
        while (!bEnd && !HasWish())
            hasWork.wait(&mutex);
        if (bEnd)
            return;
        if (lFileOfDecoded != lFile)
            decoded.emplace(pages);
        lFileOfDecoded = lFile;
        WorkOn(decoded);
    }
}

/// The lock is held outside of the work proper.
void PageRenderer::WorkOn(std::optional<DecodedPages> &decoded)
{
    const PagePart part = TakeWish();
    const int lFileOfPart = lFile;
    inWork = part;
    mutex.unlock();
    const QImage picture = Render(decoded->Get(part.lPage), part);
    mutex.lock();
    inWork.reset();
    if (lFileOfPart != lFile)
        return;
    if (aDone.isEmpty())
        QMetaObject::invokeMethod(this, &PageRenderer::Deliver, Qt::QueuedConnection);
    aDone.append({part, picture});
}

// In the event loop

void PageRenderer::Deliver()
{
    QList<Done> done;
    {
        const QMutexLocker lock(&mutex);
        done.swap(aDone);
    }
    for (const Done &one : done)
        emit Rendered(one.part, one.picture);
}
