// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

/// Where the launcher's own files are on the PC, and the files of the box that it touches.
namespace Places {

QString inBox();
QString plugin();
/// The demonstration portal's folder.
QString portal();

/// This program, as a box has it.
QString programInside();
/// Whether this program runs inside a box.
bool isInside();

constexpr char pluginDirectory[] = "/sdk/qt/STBGUI_PLUGIN/stbbrowser/";
constexpr char manifest[] = "/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
constexpr char userManifest[] = "/home/user/config/plugins/sdk/qt/STBGUI_PLUGIN/stbbrowser/PluginManifest.xml";
constexpr char traceLevel[] = "/etc/stbjsapi_debug";

} // namespace Places
