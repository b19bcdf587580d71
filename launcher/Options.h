// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

/// The command line of kavro-box, of the process that the user starts and of the one that it starts inside the box.
struct Options
{
    QString box; ///< absolute path of the box directory
    bool headless = false;
    QStringList shared;              ///< outside, in-box's options for folders of the PC that the box has too
    QString screenshot;              ///< absolute path of the picture's file; empty without
    int screenshotDescriptor = -1;   ///< inside, of that file
    std::optional<double> exitAfter; ///< seconds after the plugin's start
    QString keys;
    QString model;
    bool trace = false;
    QSize size;            ///< of the window; empty without
    bool boxEngine = true; ///< pages find the web engine of a box, not the PC's
    bool remote = false;
    bool inspector = false;
    bool keepRunning = false; ///< outside, starts the box again after a crash
    QStringList allowNet;     ///< hosts that pages from elsewhere may reach
    QString page;             ///< outside, the argument as given; inside, the address to open; empty without
    QString portal;           ///< inside, the address of the demonstration portal
    int channel = -1;         ///< inside, the descriptor of the Channel; -1 without

    /// Reads the application's command line. --help and wrong usage end the program.
    static Options fromCommandLine();
    /// The command line for the process inside the box.
    QStringList forInside() const;
};

/// First argument of the process inside the box.
constexpr char insideArgument[] = "--inside";
