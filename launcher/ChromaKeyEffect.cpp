// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "ChromaKeyEffect.h"

#include <QImage>
#include <QPainter>

namespace {

void removeColor(QImage *image, QRgb color)
{
    for (int y = 0; y < image->height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image->scanLine(y));
        for (int x = 0; x < image->width(); ++x) {
            if ((qUnpremultiply(line[x]) & RGB_MASK) == (color & RGB_MASK))
                line[x] = 0;
        }
    }
}

} // namespace

void ChromaKeyEffect::setColor(QRgb color)
{
    if (m_color == color)
        return;
    m_color = color;
    update();
}

void ChromaKeyEffect::draw(QPainter *painter)
{
    // The layer's own pixels: scaled ones would have colours between the page's.
    QPoint offset;
    QImage image = sourcePixmap(Qt::LogicalCoordinates, &offset, NoPad)
                       .toImage()
                       .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    removeColor(&image, m_color);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(offset, image);
}
