// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The box's files have fixed names, and anything may stand in their places. A named pipe would be waited for, a device
// or a file of gigabytes read without end.

#pragma once

#include <string>

namespace Common {

/// More than the box's texts ever have: settings, manifests, certificates. In bytes.
const long long largestText = 4 * 1024 * 1024;

/// Opens a file as open(2) does, but never waits for it, and takes nothing but a regular file of at most so many bytes;
/// with O_TRUNC of any size. -1 if it cannot, and errno says why. What is odd about the file, and what to do, is then
/// in *oddity, in words for the log; it is left alone otherwise.
int openRegular(const std::string &path, int flags, long long largest, std::string *oddity);

/// Whether this process has not yet said this. Of what is opened again and again, one line is enough. Any thread.
bool isNews(const std::string &line);

} // namespace Common
