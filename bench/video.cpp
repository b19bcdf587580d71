// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// A film of 1080p25 under a transparent page on the desk box, beside a player that shows it nowhere.

#include "Child.h"
#include "Comparison.h"
#include "tests/desktop/TestMedia.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>
#include <unistd.h>

namespace {

const char *const part = "/mnt/stb/part.mp4"; // of the film
const char *const film = "/mnt/stb/film.mp4";
const char *const page = "/mnt/stb/page.html";
constexpr int partLength = 6; // seconds
constexpr int parts = 5;
constexpr int settlingTime = 5; // until it plays evenly
constexpr int measuringTime = 20;
constexpr int rounds = 3;

const char pageText[] = R"html(<!DOCTYPE html>
<title>Film</title>
<style>
body { margin: 0; color: white; font: 30px sans-serif; }
div { position: absolute; left: 60px; top: 600px; padding: 20px; background: rgba(0, 0, 60, 0.7); }
</style>
<div>Channel 1</div>
<script>StbMedia.PlayFile(StbMedia.CreatePlayer(), '/film.mp4', 0, 0, 25, '');</script>
)html";

// With as many bits as a television channel of that size has.
bool makeFilm()
{
    const QString length = QString::number(partLength);
    return TestMedia::ffmpeg(
               {"-f",       "lavfi",     "-i",       "testsrc2=size=1920x1080:rate=25,noise=alls=12:allf=t",
                "-f",       "lavfi",     "-i",       "sine=440",
                "-t",       length,      "-c:v",     "libx264",
                "-preset",  "superfast", "-pix_fmt", "yuv420p",
                "-g",       "50",        "-b:v",     "8M",
                "-maxrate", "8M",        "-bufsize", "8M",
                "-c:a",     "aac",       part})
        && TestMedia::ffmpeg({"-stream_loop", QString::number(parts - 1), "-i", part, "-c", "copy", film});
}

bool makePage()
{
    QFile file(page);
    return file.open(QIODevice::WriteOnly) && file.write(pageText) > 0;
}

// Of a process, in seconds.
double processorTime(qint64 process)
{
    QFile file(QString("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray status = file.readAll();
    // The name before may contain anything, but is in parentheses.
    const QList<QByteArray> fields = status.mid(status.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toDouble() + fields.value(12).toDouble()) / double(sysconf(_SC_CLK_TCK));
}

void waitFor(int seconds)
{
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(seconds * 1000);
    loop.exec();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString mpv = QStandardPaths::findExecutable("mpv");
    if (mpv.isEmpty())
        qFatal("mpv is not installed; bench/run installs it");
    if (!makeFilm() || !makePage())
        return 1;

    QVector<double> rates;
    const auto load = [&](const QString &program) {
        const bool isPlugin = program == "plugin";
        const QStringList desk = {"--exit-after", QString::number(settlingTime + measuringTime + 1), "--",
                                  QString("file://") + page};
        const QStringList player = {"--no-config", "--vo=null", "--ao=null", "--hwdec=no", "--really-quiet", film};
        Child child(isPlugin ? "deskbox" : mpv, isPlugin ? desk : player);
        waitFor(settlingTime);
        const double before = processorTime(child.id());
        waitFor(measuringTime);
        const double used = processorTime(child.id()) - before;
        if (!child.isRunning())
            child.fail("ended too soon");
        if (isPlugin)
            rates += child.values().value(0);
        return used / measuringTime * 100;
    };
    const Comparison comparison({"processor for a film of 1080p25", "%", 1}, {"plugin", "mpv --vo=null"}, rounds, load);
    Table table("video", Comparison::columns());
    comparison.addRow(&table, "mpv --vo=null", Comparison::Limit{Comparison::Limit::RatioAtMost, 2});
    Comparison::addFigures(&table, {"pictures shown", "a second", 1}, rates);
    return table.finish();
}
