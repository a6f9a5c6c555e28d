#include "blacklist/ui/AnswerColor.h"

#include <algorithm>
#include <cmath>

namespace quarry {

namespace {

/// Relative luminance of an sRGB color (WCAG 2.1).
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

double contrastRatio(const QColor& a, const QColor& b)
{
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor answerColor(AnswerTone tone, const QColor& background)
{
    const QColor onLight = tone == AnswerTone::Green ? QColor(0x0f, 0x6b, 0x2e) : QColor(0x98, 0x40, 0x00);
    const QColor onDark = tone == AnswerTone::Green ? QColor(0x6f, 0xe0, 0x9a) : QColor(0xff, 0xb3, 0x5c);
    return contrastRatio(onLight, background) >= contrastRatio(onDark, background) ? onLight : onDark;
}

} // namespace quarry
