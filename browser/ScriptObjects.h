// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QList>
#include <QString>

class PageEvents;
class PageGuards;
class QObject;
class QWebFrame;

namespace KavroJS {
class StbDisplay;
class StbMedia;
class StbPVR;
} // namespace KavroJS

namespace KavroJSDeprecated {
class stb_display;
class stb_media;
} // namespace KavroJSDeprecated

/// The five script objects: makes and deletes them, puts them into each new page, and has the page hear of the
/// platform's events.
class ScriptObjects
{
public:
    /// owner: the parent of what is made beside the objects, for them and for each page.
    explicit ScriptObjects(QObject *owner);
    ~ScriptObjects();

    // Those whose signals concern the browser.
    QObject *mediaObject() const;
    QObject *displayObject() const;
    QObject *deprecatedMediaObject() const;

    /// For a new page in the frame, before its first script runs.
    void addTo(QWebFrame *frame);
    /// The script to run after each event.
    void setJsCallback(const QString &code);
    /// Has the page in the frame hear of an event.
    void deliver(int argument, int code, QWebFrame *frame);

private:
    QString withoutValue(const QString &code);
    void leavePage();
    void addGuards(QWebFrame *frame);

    /// One of the five, and its name in pages.
    struct ScriptObject
    {
        const char *name;
        QObject *object;
    };

    QObject *owner;
    KavroJS::StbMedia *media;
    KavroJS::StbDisplay *display;
    KavroJS::StbPVR *pvr;
    KavroJSDeprecated::stb_media *deprecatedMedia;
    KavroJSDeprecated::stb_display *deprecatedDisplay;
    QList<ScriptObject> scriptObjects;
    PageEvents *pageEvents; ///< of the current page; null before the first
    PageGuards *pageGuards; ///< of the current page; null before the first, and where pages need none
    QString jsCallbackCode;
    QString scriptToRun; ///< what stands for jsCallbackCode, once it was needed
};
