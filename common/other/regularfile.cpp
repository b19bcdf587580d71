// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "common/other/regularfile.h"

#include <cerrno>
#include <mutex>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char *kindOf(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFDIR:
        return "a folder";
    case S_IFIFO:
        return "a named pipe";
    case S_IFSOCK:
        return "a socket";
    default:
        return "a device";
    }
}

// 0, or the error of opening what this is.
int errorOf(const struct stat &file, int flags, long long largest)
{
    if (S_ISDIR(file.st_mode))
        return EISDIR;
    if (!S_ISREG(file.st_mode))
        return EINVAL;
    return (flags & O_TRUNC) == 0 && file.st_size > largest ? EFBIG : 0;
}

std::string oddityOf(const std::string &path, const struct stat &file, int flags, long long largest)
{
    const std::string what = S_ISREG(file.st_mode) ? "larger than " + std::to_string(largest) + " bytes"
                                                   : std::string(kindOf(file.st_mode)) + " and not a file";
    const std::string use = (flags & O_ACCMODE) == O_RDONLY ? "read from" : "written to";
    return path + " is " + what + ", so nothing is " + use + " it; put a file of the usual kind there or remove it";
}

} // namespace

int Common::openRegular(const std::string &path, int flags, long long largest, std::string *oddity)
{
    struct stat found = {};
    // Before it is opened, which is more than some devices can take.
    int error = stat(path.c_str(), &found) == 0 ? errorOf(found, flags, largest) : 0;
    int file = -1;
    if (error == 0) {
        // Not waiting, and looked at once more: it may have become something else.
        file = open(path.c_str(), (flags & ~O_TRUNC) | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
        if (file < 0)
            return -1;
        error = fstat(file, &found) == 0 ? errorOf(found, flags, largest) : errno;
    }
    if (error == 0 && ((flags & O_TRUNC) == 0 || ftruncate(file, 0) == 0))
        return file;
    if (error != 0)
        *oddity = oddityOf(path, found, flags, largest);
    else
        error = errno;
    if (file >= 0)
        close(file);
    errno = error;
    return -1;
}

bool Common::isNews(const std::string &line)
{
    static std::mutex mutex;
    // Never destroyed: files are opened until the very end of the process.
    static auto *const said = new std::set<std::string>;
    const std::lock_guard<std::mutex> lock(mutex);
    return said->insert(line).second;
}
