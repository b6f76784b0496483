#include "CorvaneBrell/Pictures/FewColors.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace brell {

namespace {

// The most frequent colours, the first one being the most frequent of all.
QList<QRgb> frequentColors(const QImage& picture) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++counts[picture.pixel(x, y)];
    std::vector<std::pair<int, QRgb>> ordered;
    for (const auto& [color, count] : counts) ordered.emplace_back(count, color);
    std::sort(ordered.begin(), ordered.end(), std::greater<>());
    ordered.resize(std::min<std::size_t>(ordered.size(), 256));
    QList<QRgb> colors;
    for (const auto& [count, color] : ordered) colors.append(color);
    return colors;
}

int distance(QRgb one, QRgb other) {
    const int red = qRed(one) - qRed(other), green = qGreen(one) - qGreen(other),
              blue = qBlue(one) - qBlue(other);
    return red * red + green * green + blue * blue;
}

}  // namespace

QImage inFewColors(const QImage& picture) {
    const QList<QRgb> colors = frequentColors(picture);
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
