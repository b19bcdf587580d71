// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "FuzzedBox.h"

#include "tests/platform/RecordingPlatform.h"
#include "tests/support/BoxFile.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <csignal>
#include <cstring>
#include <limits>

#include <unistd.h>

namespace {

using RecordingPlatform::Answer;

const char *const scripts = "/usr/local/bin/custom/";
const char *const storage = "/mnt/stb/";

void write(const QString &name, const QByteArray &content, QFile::Permissions permissions)
{
    QFile file(fromOutside(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.setPermissions(permissions))
        qFatal("Cannot write %s: %s", qPrintable(name), qPrintable(file.errorString()));
}

void addFiles()
{
    const QFile::Permissions readable = QFile::ReadOwner | QFile::WriteOwner;
    const QFile::Permissions runnable = readable | QFile::ExeOwner;
    write(QString(scripts) + "hello", "#!/bin/sh\nprintf '%s\\n' \"$@\"\nexit 7\n", runnable);
    write(QString(scripts) + "talk", "#!/bin/sh\nhead -c 100000 /dev/urandom\nhead -c 100000 /dev/urandom >&2\n",
          runnable);
    write(QString(scripts) + "plain", "not for running", readable);
    write(QString(scripts) + "broken", "#!/nowhere/at/all\n", runnable);
    QDir().mkpath(fromOutside(QString(scripts) + "folder"));
    QDir().mkpath(QString(storage) + "folder/folder");
    write(QString(storage) + "a.ts", "no film", readable);
    write(QString(storage) + "\xf0\x9f\x98\x80 \"'\\ %1\n", "", readable);
}

// Texts that fill their fields, without a closing NUL.
template <std::size_t size>
void fillUp(char (&field)[size])
{
    std::memset(field, 0xe4, size);
}

void answerFully()
{
    KVR_Track track = {};
    track.id = -1;
    fillUp(track.descr);
    const QVector<KVR_Track> tracks(50, track);
    RecordingPlatform::answer("KVR_GetVideoTrackList", Answer::array(tracks));
    RecordingPlatform::answer("KVR_GetAudioTrackList", Answer::array(tracks, KVR_OK, -1));
    RecordingPlatform::answer("KVR_GetSubtitleTrackList", Answer::nullArray(3));
    RecordingPlatform::answer("KVR_GetTeletextTrackList", Answer::array(tracks, KVR_ERR_INVALID_ID));

    KVR_Record record = {};
    record.start = 0xffffffff;
    fillUp(record.addr);
    fillUp(record.file);
    RecordingPlatform::answer("KVR_GetRecordsList", Answer::array(QVector<KVR_Record>(50, record)));
    KVR_MulticastEvent event = {};
    fillUp(event.ip_port);
    RecordingPlatform::answer("KVR_GetLastMulticastEvent", Answer::structure(event));
    RecordingPlatform::answer("KVR_GetOrder", Answer::array(QVector<int>(1000, -1)));
    RecordingPlatform::answer("KVR_GetBootParamValue", Answer::buffer(QByteArray(256, '\xe4')));
    RecordingPlatform::answer("KVR_GetRecordFilename", Answer::text(QByteArray(100000, '\xe4')));
    RecordingPlatform::answer("KVR_GetPosition", std::numeric_limits<long long>::max());
    RecordingPlatform::answer("KVR_GetFps", std::numeric_limits<double>::quiet_NaN());
}

} // namespace

void FuzzedBox::fill()
{
    // Its command signals the desk box, for which this program stands.
    if (QStandardPaths::findExecutable("reboot") != "/box/bin/reboot")
        qFatal("The command \"reboot\" is not that of a box; run the fuzzer by scripts/fuzz");
    std::signal(SIGHUP, SIG_IGN);
    qputenv("KAVRO_BOX_PID", QByteArray::number(getpid()));
    addFiles();
    answerFully();
}

void FuzzedBox::changePlayer(QRandomGenerator &random)
{
    RecordingPlatform::answer("KVR_CreatePlayer", random.bounded(players + 1) ? random.bounded(1, players + 1) : -1);
}
