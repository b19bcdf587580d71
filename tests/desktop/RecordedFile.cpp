// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordedFile.h"

#include <QFile>

extern "C" {
#include <libavformat/avformat.h>
}

RecordedFile::RecordedFile(const QString &name)
{
    AVFormatContext *file = nullptr;
    if (avformat_open_input(&file, QFile::encodeName(name).constData(), nullptr, nullptr) < 0)
        return;
    format = file->iformat->name;
    avformat_find_stream_info(file, nullptr);
    for (unsigned i = 0; i < file->nb_streams; ++i)
        pids.append(file->streams[i]->id);
    const int video = av_find_best_stream(file, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    AVPacket *packet = av_packet_alloc();
    double first = 0;
    double last = 0;
    while (av_read_frame(file, packet) >= 0) {
        if (packet->stream_index == video && packet->dts != AV_NOPTS_VALUE) {
            const double time = double(packet->dts) * av_q2d(file->streams[video]->time_base);
            if (pictures++ == 0)
                first = last = time;
            longestStep = qMax(longestStep, time - last);
            last = time;
        }
        av_packet_unref(packet);
    }
    seconds = last - first;
    av_packet_free(&packet);
    avformat_close_input(&file);
}
