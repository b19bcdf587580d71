// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordFile.h"
#include "BoxPaths.h"
#include "Log.h"

#include "common/other/wholewrite.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

using namespace Desk;

namespace {

// They are created for the recording and stay when it is removed.
constexpr std::ptrdiff_t mostFolders = 8;

// The name relative to the storage root, or an empty path for one that lies outside.
std::filesystem::path belowRoot(const std::string &name)
{
    std::filesystem::path path(name);
    if (path.is_absolute())
        path = path.lexically_relative(BoxPaths::storageRoot);
    for (const auto &part : path) {
        if (part == ".." || part == ".")
            return {};
    }
    return path;
}

enum class Missing { Fail, Create };

// Opens the folder of a path below the storage root, step by step, so that no link can lead out of it.
int openFolder(const std::filesystem::path &path, Missing missing)
{
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    int folder = ::open(BoxPaths::storageRoot, flags);
    for (const auto &part : path.parent_path()) {
        if (folder < 0)
            break;
        if (missing == Missing::Create)
            ::mkdirat(folder, part.c_str(), 0755); // if that fails, so does what follows
        const int next = ::openat(folder, part.c_str(), flags | O_NOFOLLOW);
        const int error = errno;
        ::close(folder);
        errno = error;
        folder = next;
    }
    return folder;
}

} // namespace

Problem RecordFile::problemOf(const std::string &name)
{
    const std::filesystem::path path = belowRoot(name);
    if (path.empty())
        return "the file name must be one below " + std::string(BoxPaths::storageRoot);
    if (!path.has_filename())
        return "the file name names a folder";
    if (std::distance(path.begin(), path.end()) > mostFolders + 1)
        return "the file name has more than " + std::to_string(mostFolders) + " folders";
    return {};
}

bool RecordFile::areSame(const std::string &name, const std::string &other)
{
    return belowRoot(name) == belowRoot(other);
}

void RecordFile::remove(const std::string &name)
{
    const std::filesystem::path path = belowRoot(name);
    const int folder = openFolder(path, Missing::Fail);
    if (folder < 0 || ::unlinkat(folder, path.filename().c_str(), 0) != 0) {
        if (errno != ENOENT)
            log("cannot remove the recording " + name + ": " + std::strerror(errno));
    }
    if (folder >= 0)
        ::close(folder);
}

RecordFile::~RecordFile()
{
    if (m_file >= 0)
        ::close(m_file);
}

Problem RecordFile::create(const std::string &name)
{
    if (Problem problem = problemOf(name))
        return problem;
    const std::filesystem::path path = belowRoot(name);
    const int folder = openFolder(path, Missing::Create);
    if (folder < 0)
        return "its folder: " + std::string(std::strerror(errno));
    m_file = ::openat(folder, path.filename().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
    const int error = errno;
    ::close(folder);
    if (m_file < 0)
        return name + ": " + std::strerror(error);
    return {};
}

Problem RecordFile::write(const unsigned char *data, int size)
{
    if (Common::writeWhole(m_file, data, static_cast<std::size_t>(size)))
        return std::nullopt;
    return std::strerror(errno);
}
