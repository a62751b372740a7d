#pragma once

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QString>

/// One sheet that is drawn and then goes through a fax machine: 1728 x 2292 points, whatever the resolution
/// of the page that it becomes.
class FaxPaper
{
public:
    static constexpr int lWidth = 1728;
    static constexpr int lHeight = 2292;
    static constexpr int lMargin = 150;
    static constexpr int lTextWidth = lWidth - 2 * lMargin;

    enum Resolution { resStandard = 98, resFine = 196 };

    explicit FaxPaper(Resolution resolution);

    QPainter &Painter() { return objPainter; }
    Resolution VerticalDpi() const { return lResolution; }

    /// A line of text whose baseline is at `y`.
    void Text(int x, int y, int size, const QString &text, bool isBold = false);
    void TextRight(int x, int y, int size, const QString &text, bool isBold = false);
    void TextCentred(int x, int y, int size, const QString &text, bool isBold = false);
    /// Wrapped text; returns where the next may begin.
    int Paragraph(int y, int size, const QString &text);
    int ParagraphIn(int x, int y, int width, int size, const QString &text);
    void Line(int x1, int y1, int x2, int y2, int width = 3);
    void Frame(int x, int y, int width, int height, int pen = 3);
    /// "Liberation Serif" and the like; holds for what is drawn from here on.
    void SetFamily(const QString &family) { strFamily = family; }

    /// The page as it arrives, black on white in one bit, with the sender's line above.
    QImage Finish(const QString &senderLine);

private:
    QFont FontOf(int size, bool isBold) const;

    Resolution lResolution;
    QImage imgPage;
    QPainter objPainter;
    QString strFamily = "Liberation Sans";
};
