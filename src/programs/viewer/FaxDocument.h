#pragma once

#include "core/FaxImage.h"

#include <QList>
#include <QObject>
#include <QSizeF>
#include <QString>

#include <memory>

/// The fax on show: its pages, and how the user has turned them. The file itself is never changed.
class FaxDocument final : public QObject
{
    Q_OBJECT

public:
    /// Reads the page table. False with a `Problem` when the file is missing or no fax that can be shown;
    /// the document is empty then.
    bool Open(const QString &path);
    /// The same with a page table that was read before, by another thread.
    bool Take(const QString &path, const FaxPages &readPages);
    /// The file was written again: shows its new pages, which stay turned as they were when they are as many
    /// as before.
    void TakeAgain(const FaxPages &readPages);
    const QString &Path() const { return strPath; }
    /// A sentence for the user.
    const QString &Problem() const { return strProblem; }
    /// What is wrong with a file without pages.
    static QString ProblemOf(const QString &path);

    /// The fax as it is shown now, for work on another thread.
    std::unique_ptr<FaxDocument> Copy() const;
    /// The pages as they lie in the file.
    const FaxPages &Pages() const { return pages; }

    int PageCount() const { return pages.Count(); }
    /// Degrees clockwise: 0, 90, 180 or 270.
    int Rotation(int page) const { return aRotations[page]; }
    /// Turns the zero-based page by a multiple of 90 degrees, clockwise.
    void Rotate(int page, int degrees);
    void RotateAll(int degrees);
    /// Size on paper in inches, turned as shown. A page that names no resolution, or an absurd one, counts as
    /// 204 x 196 dpi.
    QSizeF PageSize(int page) const;
    /// True when the page names the resolution that counts.
    bool HasResolution(int page) const;
    /// The decoded page, turned as shown; empty when it can no longer be read.
    PageBits LoadPage(int page) const;

signals:
    /// Another fax, or none.
    void Opened();
    /// The same file with other contents.
    void Reopened();
    /// One page, or all of them.
    void Turned();

private:
    void Turn(int page, int degrees);

    FaxPages pages;
    QList<int> aRotations;
    QString strPath;
    QString strProblem;
};
