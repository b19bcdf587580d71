// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>

#include <memory>

class HostedPlugin;

namespace KavroJSDeprecated {
class stb_display;
class stb_media;
} // namespace KavroJSDeprecated

/// What the engine itself makes of the five script objects, in the plugin's page beside the guards: objects of this
/// program's own, with the same members.
class WrappersBeside
{
public:
    WrappersBeside();
    ~WrappersBeside();
    WrappersBeside(const WrappersBeside &) = delete;
    WrappersBeside &operator=(const WrappersBeside &) = delete;

    /// Loads a new page with new wrappers in it.
    bool load(HostedPlugin *plugin, const QString &html);

    /// The name of the wrapper beside the guard of this name.
    static QString nameBeside(const QString &object) { return "wrapperOf_" + object; }

private:
    void renew();

    std::unique_ptr<KavroJSDeprecated::stb_media> m_deprecatedMedia;
    std::unique_ptr<KavroJSDeprecated::stb_display> m_deprecatedDisplay;
};
