#include "graphs/colour_code.h"

#include <QHash>

#include <array>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace graphs {

namespace {

struct Rgb {
    int red;
    int green;
    int blue;
};

constexpr std::array<Rgb, 60> defaultPalette{{
    {255, 242, 0}, {94, 163, 0},   {0, 166, 80},    {0, 105, 98},   {0, 113, 187},  {45, 49, 145},
    {248, 148, 29}, {0, 4, 120},   {160, 0, 52},    {237, 0, 140},  {102, 45, 145}, {115, 0, 110},
    {122, 0, 70},  {68, 0, 118},   {75, 0, 73},     {152, 134, 117}, {198, 155, 109}, {155, 98, 35},
    {117, 60, 4},  {238, 28, 35},  {120, 0, 0},     {129, 123, 0},  {173, 93, 1},   {0, 88, 38},
    {0, 104, 51},  {122, 46, 0},   {72, 36, 0},     {75, 0, 0},     {81, 77, 0},    {172, 55, 0},
    {125, 72, 0},  {78, 46, 0},    {7, 0, 47},      {156, 0, 5},    {158, 150, 0},  {0, 55, 25},
    {0, 57, 79},   {13, 0, 75},    {77, 1, 44},     {47, 0, 46},    {241, 101, 33}, {64, 102, 24},
    {40, 79, 0},   {0, 89, 82},    {0, 169, 156},   {0, 33, 62},    {121, 0, 37},   {238, 19, 91},
    {145, 38, 143}, {148, 1, 87},  {199, 178, 154}, {140, 112, 79}, {140, 98, 57},  {115, 99, 87},
    {82, 61, 43},  {0, 71, 117},   {0, 91, 126},    {0, 33, 86},    {108, 84, 59},  {96, 57, 19},
}};

// Lives for the whole process: a key keeps its colour however long the program runs.
struct KeyAllocator {
    std::mutex mutex;
    std::vector<ColourCodePtr> palette;
    std::size_t nextIndex = 0;
    QHash<QString, ColourCodePtr> byKey;
};

KeyAllocator& allocator()
{
    static KeyAllocator instance;
    return instance;
}

void fillPalette(KeyAllocator& state)
{
    if (state.palette.size() > 59)
        return;
    for (const Rgb& rgb : defaultPalette)
        state.palette.push_back(std::make_shared<const ColourCode>(rgb.red / 255.0, rgb.green / 255.0, rgb.blue / 255.0));
}

double randomComponent() { return std::rand() / 2147483647.0; }

} // namespace

QString ColourCode::description() const { return QString::asprintf("%f, %f, %f", red, green, blue); }

void ColourCode::addDefaultColours()
{
    KeyAllocator& state = allocator();
    const std::lock_guard<std::mutex> lock(state.mutex);
    fillPalette(state);
}

ColourCodePtr ColourCode::getColourCodeForKey(const QString& key)
{
    KeyAllocator& state = allocator();
    const std::lock_guard<std::mutex> lock(state.mutex);
    fillPalette(state);
    if (const auto found = state.byKey.constFind(key); found != state.byKey.cend())
        return found.value();
    ColourCodePtr colour;
    if (state.nextIndex < state.palette.size()) {
        colour = state.palette[state.nextIndex];
        if (++state.nextIndex == state.palette.size())
            state.nextIndex = 0;
    } else {
        auto random = std::make_shared<ColourCode>();
        random->green = randomComponent();
        random->red = randomComponent();
        random->blue = randomComponent();
        colour = std::move(random);
    }
    state.byKey.insert(key, colour);
    return colour;
}

} // namespace graphs
