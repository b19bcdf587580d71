// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "Firmware.h"
#include "BoxPaths.h"
#include "DiskRoom.h"
#include "DurableFile.h"
#include "Log.h"
#include "platform/stbapi.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <curl/curl.h>
#include <filesystem>
#include <memory>
#include <unistd.h>

using namespace Desk;

namespace {

constexpr long connectTimeout = 15; // seconds
constexpr long stallTimeout = 30;   // seconds without a byte

// Boxes keep their firmware in flash memory of some hundred megabytes.
constexpr std::int64_t largestImage = 1LL << 30;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;
using Transfer = std::unique_ptr<CURL, void (*)(CURL *)>;

constexpr char sizeUntold[] = "the server does not tell the size (Content-Length), so it cannot be verified";

// What is being fetched, and where it goes.
struct Image
{
    CURL *transfer = nullptr;
    std::FILE *file = nullptr;
    std::int64_t received = 0;
    Problem problem;
};

int breakOff(void *finishing, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
{
    return *static_cast<std::atomic<bool> *>(finishing) ? 1 : 0;
}

std::int64_t promisedSize(CURL *transfer)
{
    curl_off_t size = -1;
    curl_easy_getinfo(transfer, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
    return size;
}

Problem problemOfPromise(CURL *transfer)
{
    const std::int64_t size = promisedSize(transfer);
    if (size < 0)
        return sizeUntold;
    return problemOfSize(size, largestImage, std::filesystem::path(BoxPaths::firmwareImage).parent_path());
}

// Takes no byte of an image that cannot be kept.
std::size_t takeBytes(const char *data, std::size_t, std::size_t size, void *target)
{
    Image &image = *static_cast<Image *>(target);
    if (image.received == 0)
        image.problem = problemOfPromise(image.transfer);
    if (image.problem)
        return 0;
    const std::size_t written = std::fwrite(data, 1, size, image.file);
    if (written < size)
        image.problem = std::strerror(errno);
    image.received += static_cast<std::int64_t>(written);
    return written;
}

void prepare(CURL *transfer, const std::string &url, char *error)
{
    curl_easy_setopt(transfer, CURLOPT_URL, url.c_str());
    curl_easy_setopt(transfer, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(transfer, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(transfer, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(transfer, CURLOPT_MAXREDIRS, 10L);
    curl_easy_setopt(transfer, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(transfer, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(transfer, CURLOPT_CONNECTTIMEOUT, connectTimeout);
    curl_easy_setopt(transfer, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(transfer, CURLOPT_LOW_SPEED_TIME, stallTimeout);
    curl_easy_setopt(transfer, CURLOPT_CAINFO, BoxPaths::certificates);
    curl_easy_setopt(transfer, CURLOPT_ERRORBUFFER, error);
}

// Fetches the whole of url into target.
Problem download(const std::string &url, std::FILE *target, std::atomic<bool> &finishing)
{
    const Transfer transfer(curl_easy_init(), curl_easy_cleanup);
    if (!transfer)
        return "no memory";
    char error[CURL_ERROR_SIZE] = "";
    prepare(transfer.get(), url, error);
    Image image;
    image.transfer = transfer.get();
    image.file = target;
    curl_easy_setopt(transfer.get(), CURLOPT_WRITEFUNCTION, takeBytes);
    curl_easy_setopt(transfer.get(), CURLOPT_WRITEDATA, &image);
    curl_easy_setopt(transfer.get(), CURLOPT_XFERINFOFUNCTION, breakOff);
    curl_easy_setopt(transfer.get(), CURLOPT_XFERINFODATA, &finishing);
    curl_easy_setopt(transfer.get(), CURLOPT_NOPROGRESS, 0L);

    const CURLcode result = curl_easy_perform(transfer.get());
    if (image.problem)
        return image.problem;
    if (result != CURLE_OK)
        return *error ? std::string(error) : curl_easy_strerror(result);
    const std::int64_t promised = promisedSize(transfer.get());
    if (promised < 0)
        return sizeUntold;
    if (promised != image.received || image.received == 0)
        return std::to_string(image.received) + " of " + std::to_string(promised) + " bytes arrived";
    if (std::fflush(target) != 0 || ::fsync(::fileno(target)) != 0)
        return std::strerror(errno);
    return std::nullopt;
}

} // namespace

int Firmware::upgrade(const std::string &url)
{
    if (url.empty()) {
        log("firmware upgrade refused: it has no URL");
        return KVR_ERR_INVALID_ARGUMENT;
    }
    if (m_busy.exchange(true)) {
        log("firmware upgrade from " + url + " refused: another one is running");
        return KVR_ERR_INVALID_STATE;
    }
    m_fetcher.post([this, url] {
        fetch(url);
        m_busy = false;
    });
    return KVR_OK;
}

void Firmware::finish()
{
    m_finishing = true;
    m_fetcher.finish();
}

void Firmware::fetch(const std::string &url)
{
    log("firmware upgrade from " + url + " started");
    const std::string image = BoxPaths::firmwareImage;
    const std::string partial = image + ".part";
    // It is made anew, and is no pipe or link that somebody has put there.
    ::unlink(partial.c_str());
    Problem problem;
    if (!makeFolderOf(image)) {
        problem = "no folder for it";
    } else if (const File file(std::fopen(partial.c_str(), "wbxe"), std::fclose); !file) {
        problem = partial + ": " + std::strerror(errno);
    } else {
        problem = download(url, file.get(), m_finishing);
    }
    if (!problem && !renameDurably(partial, image))
        problem = "the image could not be stored";

    if (problem) {
        ::unlink(partial.c_str());
        log("firmware upgrade from " + url + " failed: " + *problem);
    } else {
        log("firmware upgrade from " + url + " done, the image is " + image);
    }
}
