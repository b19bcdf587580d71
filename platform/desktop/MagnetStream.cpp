// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MagnetStream.h"
#include "MagnetDownload.h"
#include "MpvCore.h"

#include <string>
#include <utility>

using namespace Desk;

namespace {

constexpr char scheme[] = "kavro-magnet";

} // namespace

// One opened stream; libmpv calls its functions, and cancels it from another thread.
struct MagnetStream::Reader
{
    static std::int64_t read(void *cookie, char *buffer, std::uint64_t size);
    static std::int64_t seek(void *cookie, std::int64_t offset);
    static std::int64_t size(void *cookie) { return static_cast<Reader *>(cookie)->download->size(); }
    static void cancel(void *cookie);
    static void close(void *cookie);

    std::mutex mutex; // between cancelling and closing
    std::shared_ptr<MagnetDownload> download;
    std::int64_t position = 0;
    std::atomic<bool> cancelled{false};
    std::atomic<bool> closed{false};
};

std::int64_t MagnetStream::Reader::read(void *cookie, char *buffer, std::uint64_t size)
{
    auto &reader = *static_cast<Reader *>(cookie);
    const std::int64_t count =
        reader.download->read(reader.position, buffer, static_cast<std::int64_t>(size), reader.cancelled);
    if (count > 0)
        reader.position += count;
    return count;
}

std::int64_t MagnetStream::Reader::seek(void *cookie, std::int64_t offset)
{
    auto &reader = *static_cast<Reader *>(cookie);
    if (offset < 0 || offset > reader.download->size())
        return MPV_ERROR_GENERIC;
    return reader.position = offset;
}

void MagnetStream::Reader::cancel(void *cookie)
{
    auto &reader = *static_cast<Reader *>(cookie);
    const std::lock_guard<std::mutex> lock(reader.mutex);
    reader.cancelled = true;
    if (reader.download)
        reader.download->wakeReaders();
}

void MagnetStream::Reader::close(void *cookie)
{
    auto &reader = *static_cast<Reader *>(cookie);
    std::shared_ptr<MagnetDownload> last; // let go without the lock
    {
        const std::lock_guard<std::mutex> lock(reader.mutex);
        last.swap(reader.download);
    }
    reader.closed = true; // and may be gone
}

MagnetStream::MagnetStream() = default;

MagnetStream::~MagnetStream() = default;

int MagnetStream::open(void *self, char *, mpv_stream_cb_info *info)
{
    auto &stream = *static_cast<MagnetStream *>(self);
    const std::lock_guard<std::mutex> lock(stream.m_mutex);
    if (!stream.m_download)
        return MPV_ERROR_LOADING_FAILED;
    Reader &reader = stream.m_readers.add();
    reader.download = stream.m_download;
    info->cookie = &reader;
    info->read_fn = Reader::read;
    info->seek_fn = Reader::seek;
    info->size_fn = Reader::size;
    info->cancel_fn = Reader::cancel;
    info->close_fn = Reader::close;
    return 0;
}

void MagnetStream::install(MpvCore &core)
{
    core.addScheme(scheme, this, open);
}

void MagnetStream::setDownload(std::shared_ptr<MagnetDownload> download)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_download.swap(download);
}
