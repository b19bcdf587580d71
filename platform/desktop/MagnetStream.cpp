// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MagnetStream.h"
#include "MagnetDownload.h"

#include <mpv/stream_cb.h>
#include <stdexcept>
#include <string>
#include <utility>

using namespace Desk;

namespace {

constexpr char scheme[] = "kavro-magnet";

// One opened stream; libmpv calls its functions, and cancels it from another thread.
struct Reader
{
    std::shared_ptr<MagnetDownload> download;
    std::int64_t position = 0;
    std::atomic<bool> cancelled{false};
};

std::int64_t readStream(void *cookie, char *buffer, std::uint64_t size)
{
    auto &reader = *static_cast<Reader *>(cookie);
    const std::int64_t count =
        reader.download->read(reader.position, buffer, static_cast<std::int64_t>(size), reader.cancelled);
    if (count > 0)
        reader.position += count;
    return count;
}

std::int64_t seekStream(void *cookie, std::int64_t offset)
{
    auto &reader = *static_cast<Reader *>(cookie);
    if (offset < 0 || offset > reader.download->size())
        return MPV_ERROR_GENERIC;
    return reader.position = offset;
}

std::int64_t sizeOfStream(void *cookie)
{
    return static_cast<Reader *>(cookie)->download->size();
}

void cancelStream(void *cookie)
{
    auto &reader = *static_cast<Reader *>(cookie);
    reader.cancelled = true;
    reader.download->wakeReaders();
}

void closeStream(void *cookie)
{
    delete static_cast<Reader *>(cookie);
}

int openStream(void *stream, char *, mpv_stream_cb_info *info)
{
    auto download = static_cast<MagnetStream *>(stream)->download();
    if (!download)
        return MPV_ERROR_LOADING_FAILED;
    auto reader = std::make_unique<Reader>();
    reader->download = std::move(download);
    info->cookie = reader.release();
    info->read_fn = readStream;
    info->seek_fn = seekStream;
    info->size_fn = sizeOfStream;
    info->cancel_fn = cancelStream;
    info->close_fn = closeStream;
    return 0;
}

} // namespace

void MagnetStream::install(mpv_handle *core)
{
    const int result = mpv_stream_cb_add_ro(core, scheme, this, openStream);
    if (result < 0)
        throw std::runtime_error(std::string("libmpv takes no streams from us: ") + mpv_error_string(result));
}

void MagnetStream::setDownload(std::shared_ptr<MagnetDownload> download)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_download.swap(download);
}

std::shared_ptr<MagnetDownload> MagnetStream::download() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_download;
}
