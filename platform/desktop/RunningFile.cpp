// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RunningFile.h"
#include "MpvCore.h"

#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

using namespace Desk;

namespace {

constexpr char scheme[] = "kavro-recording";
constexpr std::chrono::milliseconds nap{50}; // until there may be more

} // namespace

// One opened file; libmpv calls its functions, and cancels it from another thread.
struct RunningFileStream::Reader
{
    static std::int64_t read(void *cookie, char *buffer, std::uint64_t size);
    static std::int64_t seek(void *cookie, std::int64_t offset);
    static std::int64_t size(void *cookie);
    static void cancel(void *cookie) { static_cast<Reader *>(cookie)->cancelled = true; }
    static void close(void *cookie);

    std::shared_ptr<const RunningFile> file;
    int descriptor = -1;
    std::atomic<bool> cancelled{false};
    std::atomic<bool> closed{false};
};

std::int64_t RunningFileStream::Reader::read(void *cookie, char *buffer, std::uint64_t size)
{
    auto &reader = *static_cast<Reader *>(cookie);
    for (;;) {
        // Asked before, so that what a recording writes last is read.
        const bool more = reader.file->isOpened && !reader.cancelled && reader.file->isRunning();
        const ssize_t count = ::read(reader.descriptor, buffer, size);
        if (count != 0 || !more)
            return count;
        std::this_thread::sleep_for(nap);
    }
}

std::int64_t RunningFileStream::Reader::seek(void *cookie, std::int64_t offset)
{
    return ::lseek(static_cast<Reader *>(cookie)->descriptor, offset, SEEK_SET);
}

std::int64_t RunningFileStream::Reader::size(void *cookie)
{
    struct stat status = {};
    return ::fstat(static_cast<Reader *>(cookie)->descriptor, &status) == 0 ? status.st_size : -1;
}

void RunningFileStream::Reader::close(void *cookie)
{
    auto &reader = *static_cast<Reader *>(cookie);
    ::close(reader.descriptor);
    reader.file.reset();
    reader.closed = true;
}

RunningFileStream::RunningFileStream() = default;

RunningFileStream::~RunningFileStream() = default;

int RunningFileStream::open(void *self, char *, mpv_stream_cb_info *info)
{
    auto &stream = *static_cast<RunningFileStream *>(self);
    const std::lock_guard<std::mutex> lock(stream.m_mutex);
    const int descriptor = stream.m_file ? ::open(stream.m_file->name.c_str(), O_RDONLY | O_CLOEXEC) : -1;
    if (descriptor < 0)
        return MPV_ERROR_LOADING_FAILED;
    Reader &reader = stream.m_readers.add();
    reader.file = stream.m_file;
    reader.descriptor = descriptor;
    info->cookie = &reader;
    info->read_fn = Reader::read;
    info->seek_fn = Reader::seek;
    info->size_fn = Reader::size;
    info->cancel_fn = Reader::cancel;
    info->close_fn = Reader::close;
    return 0;
}

void RunningFileStream::install(MpvCore &core)
{
    core.addScheme(scheme, this, open);
}

void RunningFileStream::setFile(std::shared_ptr<const RunningFile> file)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_file.swap(file);
}
