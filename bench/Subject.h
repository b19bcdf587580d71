// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QUrl>

class QWebView;

/// What is measured: a view that shows a page with the script object StbMedia, and brings it events.
class Subject
{
public:
    Subject() = default;
    Subject(const Subject &) = delete;
    Subject &operator=(const Subject &) = delete;
    virtual ~Subject() = default;

    /// Begins to load a page; the view may be made only later.
    virtual void start(const QUrl &page) = 0;
    /// Null until there is one.
    virtual QWebView *view() const = 0;
    /// Gets events ready, when the page is there.
    virtual void connectEvents() = 0;
    /// Sends an event to the page's eventCallback. Any thread.
    virtual void fire(int argument) = 0;
};
