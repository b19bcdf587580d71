// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "DurableFile.h"
#include "Log.h"

#include "common/other/regularfile.h"
#include "common/other/wholewrite.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string folderOf(const std::string &path)
{
    return std::filesystem::path(path).parent_path().string();
}

bool fail(const std::string &action, const std::string &path)
{
    const int error = errno;
    Desk::log("cannot " + action + " " + path + ": " + std::strerror(error));
    return false;
}

bool syncFolder(const std::string &path)
{
    const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return fail("open", path);
    const bool synced = ::fsync(folder) == 0 || fail("sync", path);
    ::close(folder);
    return synced;
}

bool replace(const std::string &path, const std::string &content, bool isSynced)
{
    if (!Desk::makeFolderOf(path))
        return false;
    std::string temporary = path + ".XXXXXX";
    const int file = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (file < 0)
        return fail("write", path);
    const bool written = ::fchmod(file, 0644) == 0 && Common::writeWhole(file, content.data(), content.size())
        && (!isSynced || ::fsync(file) == 0);
    if (!written)
        fail("write", path);
    ::close(file);
    if (written && (::rename(temporary.c_str(), path.c_str()) == 0 || fail("write", path)))
        return true;
    ::unlink(temporary.c_str());
    return false;
}

} // namespace

bool Desk::makeFolderOf(const std::string &path)
{
    std::error_code error;
    std::filesystem::create_directories(folderOf(path), error);
    if (error)
        log("cannot create " + folderOf(path) + ": " + error.message());
    return !error;
}

bool Desk::renameDurably(const std::string &from, const std::string &to)
{
    if (::rename(from.c_str(), to.c_str()) != 0)
        return fail("write", to);
    return syncFolder(folderOf(to));
}

bool Desk::writeDurably(const std::string &path, const std::string &content)
{
    return replace(path, content, true) && syncFolder(folderOf(path));
}

bool Desk::replaceFile(const std::string &path, const std::string &content)
{
    return replace(path, content, false);
}

bool Desk::makeDurable(const std::string &path)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return fail("open", path);
    const bool synced = ::fsync(file) == 0 || fail("sync", path);
    ::close(file);
    return synced && syncFolder(folderOf(path));
}

std::string Desk::readFile(const std::string &path)
{
    std::string oddity;
    const int file = Common::openRegular(path, O_RDONLY, Common::largestText, &oddity);
    if (file < 0) {
        if (oddity.empty() && errno != ENOENT)
            fail("read", path);
        if (!oddity.empty() && Common::isNews(oddity))
            log(oddity);
        return {};
    }
    std::string content;
    std::array<char, 4096> block;
    ssize_t count = 0;
    do {
        count = ::read(file, block.data(), block.size());
        if (count < 0)
            fail("read", path);
        else
            content.append(block.data(), static_cast<std::size_t>(count));
    } while (count > 0 && content.size() < static_cast<std::size_t>(Common::largestText));
    ::close(file);
    return content;
}
