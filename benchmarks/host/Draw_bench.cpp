// What "draw" does with documents of many blocks, from the tree to the bytes of the picture, and the layout alone. In a
// row of blocks that stand where the model has them, every fifth is joined with one nearby besides; in a flow without
// places the blocks are arranged in layers first.
#include "host/document/Document.h"
#include "host/drawing/Drawing.h"
#include "host/drawing/Fonts.h"
#include "host/drawing/Layout.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace flowmere::host;
namespace fs = std::filesystem;

std::string blockText(int number, int columns, bool hasPlace) {
    char const* const shape = number % 7 == 3 ? "Decision" : "Rectangle";
    std::string place;
    if (hasPlace)
        place = fmt::format("Point_X=\"{}\" Point_Y=\"{:.2f}\" Width=\"2\" Hight=\"0.75\" ", 1 + 3 * (number % columns),
                            12 - 1.5 * (number / columns));
    return fmt::format(
        "<BLOCK Name=\"B{0}\" BlockString=\"Compute the reaction forces {0}\">\n<DIMENSION {1}Shape=\"{2}\"/>"
        "\n</BLOCK>\n",
        number, place, shape);
}

std::string connectorText(int start, int end, int startGrip, int endGrip) {
    return fmt::format("<CONNECTOR StartBlock=\"B{}\" EndBlock=\"B{}\" StartHandle=\"{}\" EndHandle=\"{}\" "
                       "Version=\"1\"/>\n",
                       start, end, startGrip, endGrip);
}

std::string documentText(int count, bool hasPlaces) {
    int const columns = std::max(1, static_cast<int>(std::sqrt(count * 0.6)));
    std::string text = "<Process Name=\"Bench\" Type=\"BPT\">\n";
    for (int number = 0; number < count; ++number)
        text += blockText(number, columns, hasPlaces);
    for (int number = 1; number < count; ++number) {
        if (!hasPlaces)
            text += connectorText(std::max(0, number - 1 - number * 7 % 3), number, 6, 2);
        else if (number % columns != 0)
            text += connectorText(number - 1, number, 4, 8);
        if (hasPlaces && number % 5 == 0 && number >= 2 * columns)
            text += connectorText(number, number - 2 * columns + number % 3, 2 + number % 4 * 2, 6);
    }
    return text + "</Process>\n";
}

// One document at a time is open in a process.
Document const& documentOf(int count, bool hasPlaces) {
    static std::unique_ptr<Document> document;
    static std::pair<int, bool> open;
    if (document == nullptr || open != std::pair{count, hasPlaces}) {
        document.reset();
        fs::path const file = fs::temp_directory_path() / fmt::format("flowmere_draw_bench_{}.xml", ::getpid());
        std::ofstream(file) << documentText(count, hasPlaces);
        document = std::make_unique<Document>(file.string());
        fs::remove(file);
        open = {count, hasPlaces};
    }
    return *document;
}

void draw(benchmark::State& state, bool hasPlaces, PictureFormat format = PictureFormat::Svg) {
    Document const& document = documentOf(static_cast<int>(state.range(0)), hasPlaces);
    for (auto _ : state)
        benchmark::DoNotOptimize(drawPicture(document, {}, format).size());
    state.SetComplexityN(state.range(0));
}

void layOutAlone(benchmark::State& state, bool hasPlaces) {
    drawing::Diagram const diagram = drawing::diagramOf(documentOf(static_cast<int>(state.range(0)), hasPlaces), 1);
    drawing::Fonts fonts;
    for (auto _ : state)
        benchmark::DoNotOptimize(drawing::layOut(diagram, false, fonts).lines.size());
    state.SetComplexityN(state.range(0));
}

void DrawBlocksWithPlaces(benchmark::State& state) {
    draw(state, true);
}
void DrawBlocksWithoutPlaces(benchmark::State& state) {
    draw(state, false);
}
// The dots are packed besides. Beyond the limit of the format a picture is scaled down, and takes no longer than that.
void DrawBlocksAsPng(benchmark::State& state) {
    draw(state, true, PictureFormat::Png);
}
void LayOutBlocksWithPlaces(benchmark::State& state) {
    layOutAlone(state, true);
}
void LayOutBlocksWithoutPlaces(benchmark::State& state) {
    layOutAlone(state, false);
}

constexpr int kFew = 1000;
constexpr int kMany = 100000;

BENCHMARK(LayOutBlocksWithPlaces)->RangeMultiplier(10)->Range(kFew, kMany)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(LayOutBlocksWithoutPlaces)
    ->RangeMultiplier(10)
    ->Range(kFew, kMany)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(DrawBlocksWithPlaces)->RangeMultiplier(10)->Range(kFew, kMany)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(DrawBlocksAsPng)->RangeMultiplier(10)->Range(kFew, kMany)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(DrawBlocksWithoutPlaces)
    ->RangeMultiplier(10)
    ->Range(kFew, kMany)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

} // namespace
