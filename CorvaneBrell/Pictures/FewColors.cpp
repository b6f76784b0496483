#include "CorvaneBrell/Pictures/FewColors.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace brell {

namespace {

constexpr qsizetype most = 256;

// Colours that look much the same have the same one.
QRgb neighbourhood(QRgb color) {
    return color & 0xf0f0f0;
}

std::vector<std::pair<int, QRgb>> countedColors(const QImage& picture) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
    std::vector<std::pair<int, QRgb>> ordered;
    for (const auto& [color, count] : counts) ordered.emplace_back(count, color);
    std::sort(ordered.begin(), ordered.end(), std::greater<>());
    return ordered;
}

// The most frequent ones as they are; then one of each neighbourhood, so that no small coloured symbol ends
// up grey.
QList<QRgb> chosenColors(const QImage& picture) {
    constexpr std::size_t exact = 100;
    QList<QRgb> chosen;
    std::set<QRgb> neighbourhoods;
    std::size_t place = 0;
    for (const auto& [count, color] : countedColors(picture)) {
        const bool isNew = neighbourhoods.insert(neighbourhood(color)).second;
        if ((isNew || place < exact) && chosen.size() < most) chosen.append(color);
        ++place;
    }
    return chosen;
}

int distance(QRgb one, QRgb other) {
    const int red = qRed(one) - qRed(other), green = qGreen(one) - qGreen(other),
              blue = qBlue(one) - qBlue(other);
    return red * red + green * green + blue * blue;
}

}  // namespace

QImage inFewColors(const QImage& picture) {
    const QList<QRgb> colors = chosenColors(picture);
    std::map<QRgb, uint> places;  // in the list, of every colour that was met
    const auto placeOf = [&](QRgb color) {
        const auto nearer = [color](QRgb one, QRgb other) {
            return distance(one, color) < distance(other, color);
        };
        const auto [known, isNew] = places.emplace(color, 0);
        if (isNew)
            known->second =
                static_cast<uint>(std::min_element(colors.begin(), colors.end(), nearer) - colors.begin());
        return known->second;
    };
    QImage result(picture.size(), QImage::Format_Indexed8);
    result.setColorTable(colors);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) result.setPixel(x, y, placeOf(picture.pixel(x, y)));
    return result;
}

}  // namespace brell
