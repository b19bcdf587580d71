// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "tests/support/HostedPlugin.h"
#include "tests/support/MessageLog.h"

#include "shell/CStbApplication.h"

#include <QByteArrayList>
#include <QStringList>

/// The plugin on an empty page of a box, for tests of what scripts do: a script's result in the page, its calls to the
/// platform and what it wrote to the message log are told apart. One at a time.
class ScriptSession
{
public:
    /// What one script did.
    struct Outcome
    {
        QString result;       ///< as JSON, see HostedPlugin::evaluateToJson()
        QString traces;       ///< the texts of the trace lines, as the message log quotes them, one a line
        QStringList messages; ///< debug messages that are no trace lines
        QStringList warnings;
        QByteArray calls; ///< to the platform, one a line
    };

    /// A text as the message log quotes it, to compare with traces.
    static QString quoted(const QString &text);
    /// The same for several texts, one a line.
    static QString quotedLines(const QString &texts);

    /// Starts the plugin, without tracing. False, with a message, if that fails.
    bool start();
    HostedPlugin &plugin() { return m_plugin; }
    MessageLog &log() { return m_log; }

    /// Switches tracing, as a technician does. False if the plugin does not notice.
    bool setTracing(bool on);

    /// Runs a script in the page. The platform's log of calls and the message log then begin anew.
    Outcome run(const QString &script);

    /// Whether the message log holds a trace line now.
    bool hasTraces() const;

    /// What the logs hold now, without the script's result; they begin anew.
    Outcome takeOutcome();

private:
    MessageLog m_log;
    HostedPlugin m_plugin;
    bool m_isTraced = false;
};
