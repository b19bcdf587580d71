// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "DialogPlacer.h"

#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QImage>
#include <QPointer>

#include <atomic>
#include <memory>
#include <vector>

class LayerEffect;
class PlayerItem;
class QGraphicsProxyWidget;

/// The desk box's screen: the players' windows, and above them the graphics layer with the plugin's widget, all as the
/// platform library has it at the moment.
class Screen : public QGraphicsScene
{
    Q_OBJECT

public:
    static constexpr int screenWidth = 1920;
    static constexpr int screenHeight = 1080;

    Screen();
    ~Screen() override;

    /// Takes the widget in, until one of the two is destroyed.
    void setPlugin(QWidget *widget);
    /// What the screen shows, at its full size.
    QImage picture();

signals:
    /// Sent on any thread.
    void stateChanged();

private:
    void scheduleUpdate();
    void updateItems();
    void updatePlayers();
    void updateLayer();

    DialogPlacer m_dialogPlacer;
    QGraphicsRectItem m_layer;                          // in the layer's own pixels; shows no more than the viewport
    QPointer<QGraphicsProxyWidget> m_proxy;             // goes with the plugin's widget
    QPointer<LayerEffect> m_effect;                     // goes with the proxy
    std::vector<std::unique_ptr<PlayerItem>> m_players; // the lowest first
    std::atomic<bool> m_updateScheduled{false};
};
