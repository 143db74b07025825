#include "Ratio.h"
#include "tray/TrayPicture.h"

#include <QGuiApplication>
#include <QPainter>

using namespace corvane;

namespace {

/// The minimum cost of a changed number: allocating and clearing its pictures.
void clearPictures()
{
    for (const int pixels : trayPictureSizes()) {
        QImage picture(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        benchmark::DoNotOptimize(picture.constBits());
    }
}

void labelRedraw(benchmark::State &state)
{
    SystemMetrics current{.memory = {.total = 100}};
    const auto redraw = [&current] {
        current.memory.used = (current.memory.used + 1) % 100;
        const auto numbers = labelNumbers(current);
        benchmark::DoNotOptimize(trayIcon(numbers[0], {0, numbers.size()}));
    };
    compare(state, redraw, clearPictures);
}
BENCHMARK(labelRedraw)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// A tick without a changed number: the texts are made and compared, nothing is drawn.
void labelUnchanged(benchmark::State &state)
{
    const SystemMetrics current{.memory = {.total = 100, .used = 63}};
    const auto before = labelNumbers(current);
    compare(
        state, [&] { benchmark::DoNotOptimize(labelNumbers(current) == before); }, clearPictures);
}
BENCHMARK(labelUnchanged)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
