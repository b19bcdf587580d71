// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Child.h"
#include "Comparison.h"
#include "tests/support/HttpServer.h"

#include <memory>

/// A program that shows the portal page, from its start on.
class Browser
{
public:
    /// Browsers of the PC, for which there is no limit, and which may not be there.
    static QStringList others();
    static bool isInstalled(const QString &name);

    /// Starts "plugin", "bare" or one of the others. Returns when the page is on its screen, and ends this program with
    /// a message if it never is.
    explicit Browser(const QString &name);

    /// From the start until the page was shown.
    double milliseconds() const { return m_milliseconds; }
    qint64 processId() const { return m_child->id(); }

    /// A table with a row for each program beside the plugin. Returns the exit status of the benchmark.
    static int compare(const QString &benchmark, const Comparison::Quantity &quantity, int rounds,
                       const Comparison::Limit &limit, const std::function<double(const Browser &)> &measure);

private:
    HttpServer m_server;
    std::unique_ptr<Child> m_child;
    double m_milliseconds;
};
