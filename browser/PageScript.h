// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

class QWebFrame;

/// Runs resources/page/NAME.js, a script that the plugin puts into pages, in the page of the frame. It is read once a
/// process.
void runPageScript(QWebFrame *frame, const char *name);
