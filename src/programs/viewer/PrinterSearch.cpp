#include "PrinterSearch.h"

#include "ProgressRun.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QPrinterInfo>

#include <atomic>
#include <memory>
#include <thread>

using namespace std::chrono_literals;

namespace {

struct Question
{
    std::atomic<bool> bAnswered = false;
    std::atomic<bool> bAnyPrinter = false;
};

/// A question without an answer is not asked a second time beside the first.
std::shared_ptr<Question> Ask()
{
    static std::shared_ptr<Question> last;
    if (last && !last->bAnswered)
        return last;
    last = std::make_shared<Question>();
    std::thread([question = last] {
        question->bAnyPrinter = !QPrinterInfo::availablePrinterNames().isEmpty();
        question->bAnswered = true;
    }).detach();
    return last;
}

} // namespace

PrinterSearch LookForPrinters(QWidget *parent, std::chrono::milliseconds limit)
{
    const std::shared_ptr<Question> question = Ask();
    const auto cancelled = std::make_shared<bool>(false);
    RunWithProgress(parent, QCoreApplication::translate("FaxPrinting", "Looking for printers..."), 0,
                    [=](const PageProgress &progress) {
                        const QDeadlineTimer end(limit);
                        while (!question->bAnswered && !end.hasExpired() && !*cancelled) {
                            std::this_thread::sleep_for(5ms);
                            *cancelled = !progress(0);
                        }
                    });
    if (question->bAnswered)
        return question->bAnyPrinter ? PrinterSearch::Found : PrinterSearch::NoPrinter;
    return *cancelled ? PrinterSearch::Cancelled : PrinterSearch::NoAnswer;
}
