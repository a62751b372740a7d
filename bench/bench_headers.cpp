#include "controls/HeaderPainter.h"
#include "controls/HeaderPicture.h"

#include <QApplication>
#include <QPixmap>

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

/// What a key in the profile's editor costs, until its picture of the page is painted.
void ShowPicture(benchmark::State &state)
{
    HeaderProfile profile = FullProfile();
    HeaderPicture picture;
    picture.resize(1200, 300);
    for (auto _ : state) {
        profile.aTexts[0].strText += 'x';
        picture.ShowProfile(profile,
                            {1, 2, QDateTime::currentDateTime(), {}, QStringLiteral("Anna Schmidt")});
        benchmark::DoNotOptimize(picture.grab());
    }
}
BENCHMARK(ShowPicture)->Iterations(200)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
