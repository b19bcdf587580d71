// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// keeper write KIND ROUND [URL]: writes one kind of what a box keeps, over and over, until it is killed. Before each
// write it says "will KEY VALUE", and "did" once the write has been reported as done.
// keeper read KIND [ROUND]: says what is kept, "KEY VALUE" a line.

#include "jsapi/SoundSettings.h"

#include "platform/stbapi.h"

#include "tests/desktop/RecordedFile.h"

#include <QByteArray>
#include <QFileInfo>

#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>
#include <unistd.h>

namespace {

constexpr int writesPerRound = 1000000; // at most, so that no value comes twice
constexpr int bootParameterCount = 8;
constexpr uint32_t farFuture = 4000000000U;

// In one write to the pipe, which a kill does not divide.
void say(const QByteArray &line)
{
    const QByteArray text = line + '\n';
    if (::write(STDOUT_FILENO, text.constData(), size_t(text.size())) != text.size())
        std::exit(EXIT_FAILURE);
}

void keep(const QByteArray &key, const QByteArray &value, const std::function<void()> &write)
{
    say("will " + key + ' ' + value);
    write();
    say("did");
}

void check(bool done, const char *what)
{
    if (done)
        return;
    qCritical("keeper: %s failed", what);
    std::exit(EXIT_FAILURE);
}

QByteArray bootParameterKey(int number)
{
    return "parameter" + QByteArray::number(number);
}

void writeSound(int first)
{
    for (int i = first;; ++i) {
        keep("volume", QByteArray::number(i), [i] { SoundSettings::setVolume(i); });
        keep("mute", QByteArray::number(i % 2), [i] { SoundSettings::setMute(i % 2); });
    }
}

void readSound()
{
    say("volume " + QByteArray::number(SoundSettings::volume()));
    say("mute " + QByteArray::number(SoundSettings::mute()));
}

void writeBootParameters(int first)
{
    for (int i = first;; ++i) {
        const QByteArray key = bootParameterKey(i % bootParameterCount);
        const QByteArray value = QByteArray::number(i) + QByteArray(i % 240, char('a' + i % 26));
        keep(key, value, [&] {
            check(KVR_SetBootParamValue(key, value) == KVR_OK, "setting a boot parameter");
            check(KVR_SyncBootParams() == KVR_OK, "bringing boot parameters to the disk");
        });
    }
}

void readBootParameters()
{
    for (int i = 0; i < bootParameterCount; ++i) {
        std::array<char, 256> value = {};
        KVR_GetBootParamValue(bootParameterKey(i), value.data());
        if (value[0])
            say(bootParameterKey(i) + ' ' + QByteArray(value.data()));
    }
}

QByteArray entry(uint32_t start, int duration)
{
    return QByteArray::number(start) + ',' + QByteArray::number(duration);
}

void writeSchedule(int first)
{
    for (int i = first;; ++i) {
        const QByteArray file = QByteArray::number(i) + ".ts";
        KVR_ID id = -1;
        keep(file, entry(farFuture, 60), [&] {
            id = KVR_AddRecord("udp://239.1.1.1:5000", file, farFuture, 60);
            check(id >= 0, "adding a recording");
        });
        keep(file, entry(farFuture, 90),
             [id] { check(KVR_SetRecordDuration(id, 90) == KVR_OK, "changing a duration"); });
        keep(file, entry(farFuture + 1, 90),
             [id] { check(KVR_SetRecordStartTime(id, farFuture + 1) == KVR_OK, "changing a start"); });
        if (i % 10 != 0)
            keep(file, "nothing", [id] { check(KVR_DeleteRecord(id) == KVR_OK, "deleting a recording"); });
    }
}

void forEachRecord(const std::function<void(const KVR_Record &)> &call)
{
    KVR_Record *records = nullptr;
    int count = 0;
    check(KVR_GetRecordsList(&records, &count) == KVR_OK, "listing recordings");
    const std::unique_ptr<KVR_Record, decltype(&std::free)> freed(records, std::free);
    for (int i = 0; i < count; ++i)
        call(records[i]);
}

void readSchedule()
{
    forEachRecord(
        [](const KVR_Record &record) { say(QByteArray(record.file) + ' ' + entry(record.start, record.duration)); });
}

// Two recordings side by side. Each value is a size that the file has already.
void writeRecordings(int first, const char *url)
{
    for (int i = first; i < first + 2; ++i)
        check(KVR_AddRecord(url, QByteArray::number(i) + ".ts", 0, 600) >= 0, "adding a recording");
    for (int i = 0;; ++i) {
        const QByteArray file = QByteArray::number(first + i % 2) + ".ts";
        const qint64 size = QFileInfo("/mnt/stb/" + QString(file)).size();
        if (size > 0)
            keep(file, QByteArray::number(size), [] {});
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// "FILE state,size,pictures" of those of one round.
void readRecordings(int first)
{
    forEachRecord([first](const KVR_Record &record) {
        if (std::atoi(record.file) < first)
            return;
        const QString file = "/mnt/stb/" + QString(record.file);
        say(QByteArray(record.file) + ' ' + QByteArray::number(record.state) + ','
            + QByteArray::number(QFileInfo(file).size()) + ',' + QByteArray::number(RecordedFile(file).pictures));
    });
}

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray order = argc > 1 ? argv[1] : "";
    const QByteArray kind = argc > 2 ? argv[2] : "";
    const int first = argc > 3 ? std::atoi(argv[3]) * writesPerRound : 0;
    if (order == "write" && kind == "sound" && argc == 4)
        writeSound(first);
    else if (order == "write" && kind == "boot" && argc == 4)
        writeBootParameters(first);
    else if (order == "write" && kind == "schedule" && argc == 4)
        writeSchedule(first);
    else if (order == "write" && kind == "recordings" && argc == 5)
        writeRecordings(first, argv[4]);
    else if (order == "read" && kind == "sound")
        readSound();
    else if (order == "read" && kind == "boot")
        readBootParameters();
    else if (order == "read" && kind == "schedule")
        readSchedule();
    else if (order == "read" && kind == "recordings")
        readRecordings(first);
    else
        check(false, "understanding the arguments");
    return EXIT_SUCCESS;
}
