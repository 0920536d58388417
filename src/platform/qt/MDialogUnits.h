// Dialog units: a quarter of the average width of a character across, an eighth of its height down, by the
// dialog's own font. So a layout grows with the font that the desktop gives.
#pragma once

#include <QFontMetrics>
#include <QRect>
#include <QString>

class MDialogUnits {
public:
    double across; // pixels for one unit
    double down;

    explicit MDialogUnits(const QFontMetrics& font) {
        // The average that dialogs have always been laid out by.
        const QString letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
        across = static_cast<double>(font.horizontalAdvance(letters)) / static_cast<double>(letters.size()) / 4;
        down = static_cast<double>(font.height()) / 8;
    }

    QRect ToPixels(int x, int y, int width, int height) const {
        const int left = qRound(x * across);
        const int top = qRound(y * down);
        return {left, top, qRound((x + width) * across) - left, qRound((y + height) * down) - top};
    }
};
