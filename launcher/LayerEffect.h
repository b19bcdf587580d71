// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QGraphicsEffect>
#include <QImage>
#include <QRgb>
#include <QSize>

#include <optional>

/// Treats the plugin's widget as the box treats its graphics layer: no more of it than the resolution, and with a
/// chroma key every pixel of exactly that red, green and blue transparent.
class LayerEffect : public QGraphicsEffect
{
    Q_OBJECT

public:
    void setLayer(const QSize &resolution, qreal opacity, std::optional<QRgb> chromaKey);

protected:
    void draw(QPainter *painter) override;

private:
    QImage layerPicture(const QPixmap &source);

    QSize m_resolution;
    qreal m_opacity = 1;
    std::optional<QRgb> m_chromaKey;
    qint64 m_keyedSource = 0; // cache key of what m_keyedPicture was made of
    QImage m_keyedPicture;
};
