// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/desktop/DeskBox.h"

#include <QGraphicsItem>

/// A player's window on the desk box's screen.
class PlayerItem : public QGraphicsItem
{
public:
    void setWindow(const DeskBox::PlayerWindow &window);

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    QSizeF m_size;
    std::shared_ptr<const DeskBox::Frame> m_frame;
};
