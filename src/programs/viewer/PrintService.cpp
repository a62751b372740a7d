#include "PrintService.h"

#include <QFile>

#include <cups/cups.h>

namespace {

/// The list that CUPS takes.
class Options final
{
public:
    explicit Options(const QStringList &namesAndValues)
    {
        for (qsizetype at = 0; at + 1 < namesAndValues.size(); at += 2)
            lCount = cupsAddOption(namesAndValues[at].toUtf8().constData(),
                                   namesAndValues[at + 1].toUtf8().constData(), lCount, &list);
    }
    ~Options() { cupsFreeOptions(lCount, list); }
    Options(const Options &) = delete;
    Options &operator=(const Options &) = delete;

    int Count() const { return lCount; }
    cups_option_t *List() const { return list; }

private:
    int lCount = 0;
    cups_option_t *list = nullptr;
};

} // namespace

QString SendToPrinter(const QString &printer, const QString &pdf, const QString &title,
                      const QStringList &options)
{
    const Options list(options);
    // Behind the slash stands a set of the user's own options, which the dialog has read by now.
    const QByteArray queue = printer.section(QLatin1Char('/'), 0, 0).toUtf8();
    const int job = cupsPrintFile(queue.constData(), QFile::encodeName(pdf).constData(),
                                  title.toUtf8().constData(), list.Count(), list.List());
    return job == 0 ? QString::fromUtf8(cupsLastErrorString()) : QString();
}
