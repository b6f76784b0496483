#include "CorvaneBrell/Window/Appearance.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace brell::Appearance {

namespace {

constexpr double readable = 4.6;  // a little more than the 4.5 that is asked for, for rounding

QColor mixed(const QColor& one, const QColor& other, double share) {
    const auto channel = [share](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * share));
    };
    return {channel(one.red(), other.red()), channel(one.green(), other.green()),
            channel(one.blue(), other.blue())};
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

// The colour moved towards the text's until it has this contrast on every one of these surfaces.
QColor movedUntil(double ratio, QColor color, const QPalette& palette,
                  std::initializer_list<QColor> surfaces) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    for (int step = 0; step < 20; ++step) {
        const bool enough = std::all_of(surfaces.begin(), surfaces.end(), [&](const QColor& surface) {
            return contrast(color, surface) >= ratio;
        });
        if (enough) return color;
        color = mixed(color, text, 0.12);
    }
    return text;
}

QColor hue(Tone tone, const QPalette& palette) {
    switch (tone) {
        case Tone::plain: return palette.color(QPalette::Active, QPalette::WindowText);
        case Tone::accent: return palette.color(QPalette::Active, QPalette::Highlight);
        case Tone::positive: return {46, 150, 96};
        case Tone::caution: return {201, 128, 18};
        case Tone::critical: return {205, 62, 62};
    }
    return {};
}

struct Colors {
    QRgb window, base, alternate, text, button, highlight, link;
};

QPalette made(const Colors& colors) {
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, QRgb color) { palette.setColor(role, QColor(color)); };
    set(QPalette::Window, colors.window);
    set(QPalette::Base, colors.base);
    set(QPalette::AlternateBase, colors.alternate);
    set(QPalette::ToolTipBase, colors.base);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        set(role, colors.text);
    set(QPalette::Button, colors.button);
    set(QPalette::Highlight, colors.highlight);
    set(QPalette::HighlightedText, qRgb(255, 255, 255));
    set(QPalette::Link, colors.link);
    set(QPalette::LinkVisited, colors.link);
    const QColor button(colors.button);
    palette.setColor(QPalette::Light, button.lighter(120));
    palette.setColor(QPalette::Midlight, button.lighter(110));
    palette.setColor(QPalette::Mid, button.darker(130));
    palette.setColor(QPalette::Dark, button.darker(150));
    palette.setColor(QPalette::Shadow, Qt::black);
    const QColor faded = movedUntil(readable, mixed(QColor(colors.text), QColor(colors.window), 0.42),
                                    palette, {QColor(colors.window), QColor(colors.base), button});
    palette.setColor(QPalette::PlaceholderText, faded);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faded);
    return palette;
}

}  // namespace

QPalette light() {
    return made({qRgb(243, 244, 246), qRgb(255, 255, 255), qRgb(247, 248, 250), qRgb(28, 30, 34),
                 qRgb(250, 250, 251), qRgb(31, 104, 196), qRgb(26, 92, 176)});
}

QPalette dark() {
    return made({qRgb(30, 31, 34), qRgb(40, 42, 46), qRgb(46, 48, 52), qRgb(235, 236, 238), qRgb(58, 60, 66),
                 qRgb(45, 110, 205), qRgb(120, 176, 255)});
}

QPalette following(const QPalette& desktop) {
    return isDark(desktop) ? dark() : light();
}

double contrast(const QColor& one, const QColor& other) {
    const double first = luminance(one), second = luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor card(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Base);
}

QColor tinted(Tone tone, const QPalette& palette) {
    return mixed(palette.color(QPalette::Window), hue(tone, palette), isDark(palette) ? 0.18 : 0.10);
}

QColor marked(const QPalette& palette) {
    const QColor ground = card(palette);
    return mixed(ground, QColor(255, 196, 0), isDark(palette) ? 0.28 : 0.38);
}

QColor secondaryText(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor window = palette.color(QPalette::Window);
    return movedUntil(readable, mixed(text, window, 0.42), palette,
                      {window, card(palette), tinted(Tone::plain, palette), marked(palette)});
}

QColor toned(Tone tone, const QPalette& palette) {
    return movedUntil(readable, hue(tone, palette), palette,
                      {palette.color(QPalette::Window), card(palette), tinted(tone, palette)});
}

QColor hairline(const QPalette& palette) {
    return mixed(palette.color(QPalette::Window), palette.color(QPalette::Active, QPalette::WindowText),
                 0.14);
}

QColor outline(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    return movedUntil(3.05, mixed(window, palette.color(QPalette::Active, QPalette::WindowText), 0.3),
                      palette, {window, card(palette)});
}

}  // namespace brell::Appearance
