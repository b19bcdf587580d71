// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "LayerEffect.h"

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

void LayerEffect::setLayer(const QSize &resolution, qreal opacity, std::optional<QRgb> chromaKey)
{
    if (m_resolution == resolution && m_opacity == opacity && m_chromaKey == chromaKey)
        return;
    m_resolution = resolution;
    m_opacity = opacity;
    m_chromaKey = chromaKey;
    m_keyedSource = 0;
    update();
}

void LayerEffect::draw(QPainter *painter)
{
    // The layer's own pixels. Scaled ones would have colours between the key and others, and at the layer's edges ones
    // between the page and what lies beyond it.
    QPoint offset;
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, &offset, NoPad);
    const QRect shown = QRect(offset, source.size()).intersected({QPoint(0, 0), m_resolution});
    painter->setOpacity(m_opacity);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(shown.topLeft(), layerPicture(source), shown.translated(-offset));
}

QImage LayerEffect::layerPicture(const QPixmap &source)
{
    if (!m_chromaKey)
        return source.toImage();
    // The page is the same as long as only video moves.
    if (m_keyedSource != source.cacheKey()) {
        m_keyedPicture = source.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
        removeColor(&m_keyedPicture, *m_chromaKey);
        m_keyedSource = source.cacheKey();
    }
    return m_keyedPicture;
}
