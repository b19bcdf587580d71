// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The desk box as kavro-box --headless runs it inside its box, with the same options. Prints how many of the player's
// pictures it showed a second.

#include "platform/desktop/DeskBox.h"
#include "launcher/Channel.h"
#include "launcher/DeskRun.h"
#include "launcher/Manifest.h"
#include "launcher/Places.h"

#include <QApplication>
#include <clocale>
#include <cstdio>

namespace {

class PictureCounter : public QObject
{
public:
    void print() const { std::printf("[%.3f]\n", (m_count - 1) / (double(m_time) / 1e9)); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && watched->parent() && watched->parent()->inherits("ScreenWindow"))
            count();
        return false;
    }

private:
    void count()
    {
        const std::vector<DeskBox::PlayerWindow> windows = DeskBox::playerWindows();
        if (windows.empty() || !windows.front().frame || windows.front().frame == m_shown)
            return;
        m_shown = windows.front().frame;
        if (m_count++ == 0)
            m_clock.start();
        m_time = m_clock.nsecsElapsed();
    }

    std::shared_ptr<const DeskBox::Frame> m_shown; // kept, so that its address is not that of a new one
    QElapsedTimer m_clock;                         // from the first picture
    qint64 m_time = 0;                             // of the last one
    int m_count = 0;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // of which players' libraries take their decimal point
    QApplication::setQuitOnLastWindowClosed(false);
    PictureCounter counter;
    application.installEventFilter(&counter);
    QObject::connect(&application, &QApplication::aboutToQuit, &counter, &PictureCounter::print);
    const Options options = Options::fromCommandLine();
    // Where it can be changed, as from outside.
    QString error;
    if (!Manifest::setHomePage(qEnvironmentVariable("KAVRO_BOX") + Places::manifest, options.page, {}, &error))
        qFatal("%s", qPrintable(error));
    Channel channel(-1);
    return DeskRun(options, &channel).untilLeft();
}
