// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Diagnosis.h"
#include "Address.h"
#include "StreamError.h"

#include <chrono>

extern "C" {
#include <libavformat/avformat.h>
}

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longestTry{2};

} // namespace

Desk::Problem Desk::diagnose(const std::string &address)
{
    AVFormatContext *source = avformat_alloc_context();
    if (!source)
        return std::nullopt;
    Clock::time_point deadline = Clock::now() + longestTry;
    source->interrupt_callback.callback = [](void *until) {
        return Clock::now() > *static_cast<Clock::time_point *>(until) ? 1 : 0;
    };
    source->interrupt_callback.opaque = &deadline;
    const int result = avformat_open_input(&source, Address(address).text().c_str(), nullptr, nullptr);
    avformat_close_input(&source);
    if (result >= 0 || result == AVERROR_EXIT)
        return std::nullopt;
    return streamErrorText(result);
}
