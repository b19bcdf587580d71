// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Screen.h"

#include "LayerEffect.h"
#include "PlayerItem.h"

#include <QApplication>
#include <QGraphicsProxyWidget>
#include <QPainter>
#include <QPixmapCache>

namespace {

const int cacheLimit = 64 * 1024; // KB; the layer's picture takes 8100, more than Qt allows by itself
const qreal layerHeight = 1;      // players are at 0

} // namespace

Screen::Screen()
    : QGraphicsScene(0, 0, screenWidth, screenHeight)
{
    QPixmapCache::setCacheLimit(cacheLimit);
    setBackgroundBrush(Qt::black);
    setItemIndexMethod(NoIndex);

    m_layer.setPen(Qt::NoPen);
    m_layer.setFlag(QGraphicsItem::ItemClipsChildrenToShape);
    m_layer.setZValue(layerHeight);
    addItem(&m_layer);

    qApp->installEventFilter(&m_dialogPlacer);
    connect(this, &Screen::stateChanged, this, &Screen::updateItems, Qt::QueuedConnection);
    DeskBox::setScreenHandler([this] { scheduleUpdate(); });
    updateItems();
}

Screen::~Screen()
{
    DeskBox::setScreenHandler({});
}

void Screen::setPlugin(QWidget *widget)
{
    m_effect = new LayerEffect;
    m_proxy = new QGraphicsProxyWidget(&m_layer);
    // A cache of the layer's own pixels, so that video does not repaint the page.
    m_proxy->setCacheMode(QGraphicsItem::ItemCoordinateCache);
    m_proxy->setGraphicsEffect(m_effect);
    m_proxy->setWidget(widget);
    m_proxy->setFocus();
    updateLayer();
}

QImage Screen::picture()
{
    updateItems();
    QImage image(screenWidth, screenHeight, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    render(&painter, image.rect(), image.rect());
    return image;
}

// On any thread. What happens before the event loop comes to it is one update.
void Screen::scheduleUpdate()
{
    if (!m_updateScheduled.exchange(true))
        emit stateChanged();
}

void Screen::updateItems()
{
    m_updateScheduled = false;
    updatePlayers();
    updateLayer();
}

void Screen::updatePlayers()
{
    const std::vector<DeskBox::PlayerWindow> windows = DeskBox::playerWindows();
    m_players.resize(qMin(m_players.size(), windows.size()));
    while (m_players.size() < windows.size()) {
        m_players.push_back(std::make_unique<PlayerItem>());
        addItem(m_players.back().get());
    }
    for (size_t i = 0; i < windows.size(); ++i)
        m_players[i]->setWindow(windows[i]);
}

void Screen::updateLayer()
{
    const DeskBox::GraphicsLayer layer = DeskBox::graphicsLayer();
    m_layer.setTransform(QTransform::fromScale(qreal(screenWidth) / layer.width, qreal(screenHeight) / layer.height));
    m_layer.setRect(layer.viewport.x, layer.viewport.y, layer.viewport.width, layer.viewport.height);
    if (!m_effect)
        return;
    std::optional<QRgb> chromaKey;
    if (layer.chromaKeyEnabled)
        chromaKey = qRgb(layer.chromaKey.red, layer.chromaKey.green, layer.chromaKey.blue);
    // Transparent and not hidden, since a hidden page would stop and lose the focus; it knows nothing of the layer.
    const qreal opacity = layer.visible ? layer.alpha / 255.0 : 0;
    m_effect->setLayer({layer.width, layer.height}, opacity, chromaKey);
}
