// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The entry point by which a launcher of Qt 4 checks, before it loads the plugin, that both were built alike. The box's
// toolkit decides what stands here, not the one that this file is compiled with.

#include <QtGlobal>

extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data()
{
    return "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.7.0\ndebug=false\nbuildkey=" KAVRO_PLUGIN_BUILD_KEY;
}
