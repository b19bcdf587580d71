// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QGraphicsEffect>
#include <QRgb>

/// Makes one colour of the graphics layer transparent: every pixel of exactly this red, green and blue.
class ChromaKeyEffect : public QGraphicsEffect
{
    Q_OBJECT

public:
    void setColor(QRgb color);

protected:
    void draw(QPainter *painter) override;

private:
    QRgb m_color = 0;
};
