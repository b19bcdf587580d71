// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "PlayerItem.h"

#include <QPainter>

void PlayerItem::setWindow(const DeskBox::PlayerWindow &window)
{
    const QSizeF size(window.place.width, window.place.height);
    if (size != m_size) {
        prepareGeometryChange();
        m_size = size;
    }
    setPos(window.place.x, window.place.y);
    setOpacity(window.alpha / 255.0);
    setVisible(window.visible);
    if (m_frame != window.frame) {
        m_frame = window.frame;
        update();
    }
}

QRectF PlayerItem::boundingRect() const
{
    return {QPointF(0, 0), m_size};
}

void PlayerItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    if (!m_frame)
        return;
    // A frame of another size is one from before the window changed.
    const QImage image(m_frame->pixels.data(), m_frame->width, m_frame->height, m_frame->stride, QImage::Format_RGB32);
    // Blending looks at the byte of a pixel that is unused; a conversion sets it.
    const bool blended = painter->opacity() < 1;
    painter->drawImage(boundingRect(), blended ? image.convertToFormat(QImage::Format_ARGB32_Premultiplied) : image);
}
