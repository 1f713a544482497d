#include <apps/kwedit/KWEditScene.h>
#include <apps/kwedit/KWFilmstrip.h>

#include <QPainter>
#include <algorithm>
#include <cmath>

QImage kwFilmstrip(const KWDocument& document, const QString& folder, qint64 first, qint64 last,
                   int count, int width) {
    KWEditScene scene(document, folder);
    const KWStage& stage = scene.stage();
    const QSize size(width, std::max(1, width * stage.size.height() / stage.size.width()));
    const int columns = std::min(count, 4);
    const int rows = (count + columns - 1) / columns;
    const int gap = std::max(4, width / 32);
    const int caption = std::max(14, width / 14);
    const QSize cell(size.width() + gap, size.height() + caption + gap);
    QImage sheet(columns * cell.width() + gap, rows * cell.height() + gap, QImage::Format_RGB32);
    sheet.fill(QColor(0x22, 0x24, 0x28));
    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(caption * 6 / 10);
    painter.setFont(font);
    painter.setPen(QColor(0xb8, 0xbc, 0xc4));
    for (int index = 0; index < count; ++index) {
        const double share = count > 1 ? static_cast<double>(index) / (count - 1) : 0;
        const auto frame =
            first + static_cast<qint64>(std::llround(share * static_cast<double>(last - first)));
        const KWTime time(stage.timeOfFrame(frame));
        const QPoint corner(gap + index % columns * cell.width(),
                            gap + index / columns * cell.height());
        painter.fillRect(QRect(corner, size), Qt::black);
        painter.drawImage(corner, scene.frame(time, size));
        painter.drawText(QRect(corner + QPoint(0, size.height()), QSize(size.width(), caption)),
                         Qt::AlignVCenter | Qt::AlignLeft,
                         QStringLiteral("%1 s").arg(static_cast<double>(time.time()), 0, 'f', 2));
    }
    return sheet;
}
