// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "TestMedia.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

using namespace TestMedia;

namespace {

QStringList languages()
{
    return {"-metadata:s:a:0", "language=rus", "-metadata:s:a:1", "language=eng"};
}

QStringList tones(int seconds)
{
    return {"-f", "lavfi", "-i", QString("sine=440:d=%1").arg(seconds),
            "-f", "lavfi", "-i", QString("sine=880:d=%1").arg(seconds)};
}

QStringList picture(const QString &source, int seconds)
{
    return {"-f", "lavfi", "-i", source + QString(":rate=25:d=%1").arg(seconds)};
}

QStringList codecs()
{
    return {"-c:v", "libx264", "-preset", "ultrafast", "-g", "25", "-pix_fmt", "yuv420p", "-c:a", "mp2"};
}

} // namespace

bool TestMedia::ffmpeg(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start("ffmpeg", QStringList{"-hide_banner", "-nostdin", "-loglevel", "error", "-y"} + arguments);
    const bool done = process.waitForFinished(60000) && process.exitCode() == 0;
    if (!done)
        qWarning() << "ffmpeg" << arguments << process.errorString() << process.readAll();
    return done;
}

bool TestMedia::makeBars(const QString &file, int seconds, const QString &size)
{
    return ffmpeg(picture("testsrc2=size=" + size, seconds) + tones(seconds)
                  + QStringList{"-map", "0", "-map", "1", "-map", "2"} + codecs() + languages()
                  + QStringList{"-streamid", QString("0:%1").arg(videoPid), "-streamid",
                                QString("1:%1").arg(russianPid), "-streamid", QString("2:%1").arg(englishPid), "-f",
                                "mpegts", file});
}

bool TestMedia::makeColor(const QString &file, const QColor &color, const QString &size, int seconds)
{
    return ffmpeg(picture("color=c=0x" + color.name().mid(1) + ":size=" + size, seconds) + tones(seconds).mid(0, 4)
                  + codecs() + QStringList{file});
}

bool TestMedia::makeFilm(const QString &file, int seconds)
{
    const QString russian = file + ".rus.srt";
    const QString english = file + ".eng.srt";
    return makeSubtitles(russian, "WWWWWWWW") && makeSubtitles(english, "MMMMMMMM\nMMMMMMMM\nMMMMMMMM")
        && ffmpeg(picture("color=c=0x102040:size=640x360", seconds) + tones(seconds)
                  + QStringList{"-i", russian, "-i", english, "-map", "0", "-map", "1", "-map", "2", "-map", "3",
                                "-map", "4"}
                  + codecs() + languages()
                  + QStringList{"-c:s", "srt", "-metadata:s:s:0", "language=rus", "-metadata:s:s:1", "language=eng",
                                "-disposition:s:0", "0", "-t", QString::number(seconds), file});
}

bool TestMedia::makeSubtitles(const QString &file, const QString &text)
{
    QFile subtitles(file);
    return subtitles.open(QIODevice::WriteOnly)
        && subtitles.write("1\n00:00:00,000 --> 01:00:00,000\n" + text.toUtf8() + "\n") > 0;
}
