// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Subject.h"
#include "platform/stbapi.h"
#include "tests/support/HostedPlugin.h"

/// The plugin, in a launcher that does as little as one can.
class PluginSubject : public Subject
{
public:
    void start(const QUrl &page) override;
    QWebView *view() const override;
    void connectEvents() override;
    void fire(int argument) override;

private:
    HostedPlugin m_plugin;
    KVR_EventHandler m_handler = nullptr;
};
