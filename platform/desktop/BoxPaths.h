// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The places of the box's file tree that the desk box's platform library uses.

#pragma once

namespace Desk::BoxPaths {

constexpr char storageRoot[] = "/mnt/stb";
constexpr char bootParameters[] = "/home/user/config/boot_params";
constexpr char serialNumber[] = "/home/user/config/serial_number";
constexpr char firmwareImage[] = "/home/user/firmware/image";
constexpr char records[] = "/home/user/config/records.sqlite";
constexpr char torrents[] = "/home/user/torrents";
constexpr char certificates[] = "/etc/ssl/certs/ca-bundle.crt";

} // namespace Desk::BoxPaths
