#include "Pairs.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <chrono>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

// The print tool as a process: documents to fax files, against Ghostscript on the same file in the same run,
// its memory on a long document, and office documents of several kinds in one request. "ratio" is the tool's
// time in parts of Ghostscript's, "cpu_ratio" the same of the processor's time, which a busy machine leaves
// alone; the tool works on all cores.

namespace {

constexpr int resolution = 600;

/// What a process took.
struct Usage
{
    bool bGood = false;
    double dWall = 0, dProcessor = 0; ///< milliseconds
    double dPeak = 0;                 ///< MiB
};

double Milliseconds(const timeval &time)
{
    return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
}

Usage Run(const QStringList &command)
{
    QByteArrayList bytes;
    for (const QString &word : command)
        bytes.append(word.toLocal8Bit());
    std::vector<char *> words;
    for (QByteArray &word : bytes)
        words.push_back(word.data());
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    int status = 0;
    rusage used{};
    const bool started = posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    if (!started || wait4(child, &status, 0, &used) != child)
        return {};
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    return {WIFEXITED(status) && WEXITSTATUS(status) == 0, wall.count(),
            Milliseconds(used.ru_utime) + Milliseconds(used.ru_stime), double(used.ru_maxrss) / 1024};
}

/// The documents, made once for all cases.
class Documents
{
public:
    QString TextPdf(int pages)
    {
        return Make(QStringLiteral("text%1.pdf").arg(pages),
                    [&](const QString &path) { WriteText(path, pages); });
    }
    QString PhotoPdf(int pages)
    {
        return Make(QStringLiteral("photos%1.pdf").arg(pages),
                    [&](const QString &path) { WritePhotos(path, pages); });
    }
    QStringList Office();
    QString Result() const { return folder.filePath(QStringLiteral("result.tif")); }

private:
    QString Make(const QString &name, const std::function<void(const QString &)> &write)
    {
        const QString path = folder.filePath(name);
        if (!QFile::exists(path))
            write(path);
        return path;
    }
    static void WriteText(const QString &path, int pages);
    static void WritePhotos(const QString &path, int pages);
    void Convert(const QString &path, const QString &ending);

    const QTemporaryDir folder;
};

QString Line(QRandomGenerator &random)
{
    static const QStringList words =
        QString::fromLatin1(
            "the quarterly report shows that revenue of our northern branch has grown by seven percent since "
            "January while costs remained stable and we expect further orders from abroad")
            .split(' ');
    constexpr int lineLength = 80;
    QString line;
    while (line.size() < lineLength)
        line += words[random.bounded(int(words.size()))] + u' ';
    return line;
}

void Documents::WriteText(const QString &path, int pages)
{
    constexpr int lines = 50, margin = 300, lineHeight = 125;
    QRandomGenerator random(1);
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setResolution(resolution);
    QPainter painter(&writer);
    painter.setFont(QFont(QStringLiteral("Liberation Serif"), 11));
    for (int page = 0; page < pages; ++page) {
        if (page > 0)
            writer.newPage();
        for (int line = 1; line <= lines; ++line)
            painter.drawText(margin, margin + line * lineHeight, Line(random));
    }
}

/// Hills, sky and grain.
QImage Photograph(quint32 seed)
{
    QImage picture(1240, 1754, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < picture.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const double wave = std::sin(x * 0.011 + seed) * std::cos(y * 0.007) + std::sin((x + y) * 0.031);
            const int level = 110 + int(wave * 45) + y * 40 / picture.height() + random.bounded(17);
            line[x] = qRgb(level, std::min(255, level + 12), std::max(0, level - 20));
        }
    }
    return picture;
}

void Documents::WritePhotos(const QString &path, int pages)
{
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setResolution(resolution);
    QPainter painter(&writer);
    for (int page = 0; page < pages; ++page) {
        if (page > 0)
            writer.newPage();
        painter.drawImage(QRect(0, 0, writer.width(), writer.height()), Photograph(quint32(page)));
    }
}

void Documents::Convert(const QString &path, const QString &ending)
{
    QProcess office;
    office.setStandardOutputFile(QProcess::nullDevice());
    office.setStandardErrorFile(QProcess::nullDevice());
    office.start(QStringLiteral("soffice"),
                 {QStringLiteral("-env:UserInstallation=file://%1/office").arg(folder.path()),
                  QStringLiteral("--headless"), QStringLiteral("--norestore"), QStringLiteral("--convert-to"),
                  ending, QStringLiteral("--outdir"), folder.path(), path});
    office.waitForFinished();
}

/// Nine of nine kinds.
QStringList Documents::Office()
{
    const auto write = [](const QString &path, const std::function<QString(QRandomGenerator &)> &line) {
        QRandomGenerator random(2);
        QFile file(path);
        for (int count = 0; file.isOpen() || file.open(QIODevice::WriteOnly); ++count) {
            if (count == 60)
                break;
            file.write(line(random).toUtf8() + '\n');
        }
    };
    const QString text = Make(QStringLiteral("letter.txt"), [&](const QString &path) { write(path, Line); });
    const QString page = Make(QStringLiteral("page.html"), [&](const QString &path) {
        write(path, [](QRandomGenerator &random) { return "<p>" + Line(random); });
    });
    const QString table = Make(QStringLiteral("table.csv"), [&](const QString &path) {
        write(path, [](QRandomGenerator &random) { return Line(random).replace(' ', ','); });
    });
    QStringList documents{text, page};
    const QList<std::pair<QString, QStringList>> kinds{{text, {"docx", "odt", "rtf", "doc"}},
                                                       {table, {"xlsx", "ods", "xls"}}};
    for (const auto &[from, endings] : kinds) {
        for (const QString &ending : endings) {
            documents += Make(QFileInfo(from).baseName() + u'.' + ending,
                              [&, &from = from](const QString &) { Convert(from, ending); });
        }
    }
    return documents;
}

std::unique_ptr<Documents> documents;

Usage RunTool(const QStringList &paths)
{
    return Run(QStringList{QStringLiteral(VELMAR_BIN_DIR "/ZemPrint.exe"), QStringLiteral("--out"),
                           documents->Result(), QStringLiteral("--fine")} +
               paths);
}

Usage RunGhostscript(const QString &path)
{
    return Run({QStringLiteral("gs"), QStringLiteral("-q"), QStringLiteral("-dNOPAUSE"),
                QStringLiteral("-dBATCH"), QStringLiteral("-dSAFER"), QStringLiteral("-sDEVICE=tiffg4"),
                QStringLiteral("-r204x196"), "-sOutputFile=" + documents->Result(), path});
}

void Compare(benchmark::State &state, const QString &path)
{
    Pairs walls, processor;
    for (auto _ : state) {
        const Usage measure = RunGhostscript(path), own = RunTool({path});
        if (!measure.bGood || !own.bGood)
            return state.SkipWithError("A process has failed.");
        walls.Add(measure.dWall, own.dWall);
        processor.Add(measure.dProcessor, own.dProcessor);
        state.SetIterationTime(own.dWall / 1e3);
    }
    walls.Report(state);
    state.counters["cpu_ratio"] = processor.Ratio();
}

void TextAgainstGhostscript(benchmark::State &state)
{
    Compare(state, documents->TextPdf(36));
}
BENCHMARK(TextAgainstGhostscript)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

void PhotosAgainstGhostscript(benchmark::State &state)
{
    Compare(state, documents->PhotoPdf(10));
}
BENCHMARK(PhotosAgainstGhostscript)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);

void MemoryOfFiveHundredPages(benchmark::State &state)
{
    const QString path = documents->TextPdf(500);
    for (auto _ : state) {
        const Usage own = RunTool({path});
        if (!own.bGood)
            return state.SkipWithError("The tool has failed.");
        state.SetIterationTime(own.dWall / 1e3);
        state.counters["peak_MiB"] = own.dPeak;
    }
}
BENCHMARK(MemoryOfFiveHundredPages)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

void NineOfficeDocuments(benchmark::State &state)
{
    const QStringList paths = documents->Office();
    for (auto _ : state) {
        const Usage own = RunTool(paths);
        if (!own.bGood)
            return state.SkipWithError("The tool has failed.");
        state.SetIterationTime(own.dWall / 1e3);
    }
}
BENCHMARK(NineOfficeDocuments)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    documents = std::make_unique<Documents>();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    documents.reset();
    return 0;
}
