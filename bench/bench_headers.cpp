#include "controls/HeaderPainter.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

namespace {

/// Two lines of header and of footer, all twelve texts in use.
HeaderProfile FullProfile()
{
    HeaderProfile profile;
    for (HeaderText &text : profile.aTexts)
        text.strText = QStringLiteral("[Recipients], page [Page] of [PageCount]");
    return profile;
}

/// What a page's header and footer cost; the argument is the vertical resolution.
void PaintPage(benchmark::State &state)
{
    const int dotsDown = static_cast<int>(state.range(0));
    const HeaderPainter painter(FullProfile(), 204, dotsDown);
    QImage sheet(1728, dotsDown == 196 ? 2292 : 1146, QImage::Format_Mono);
    sheet.fill(0);
    HeaderFields fields{1, 500, QDateTime::currentDateTime(), {}, QStringLiteral("Anna Schmidt")};
    for (auto _ : state) {
        painter.Paint(sheet, fields);
        ++fields.lPage;
    }
}
BENCHMARK(PaintPage)->Arg(196)->Arg(98)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
