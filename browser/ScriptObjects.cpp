// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "browser/ScriptObjects.h"

#include "browser/DeleteLaterFilter.h"
#include "browser/PageEvents.h"
#include "browser/PageGuards.h"
#include "common/other/qtcompat.h"
#include "jsapi/StbDisplay.h"
#include "jsapi/StbMedia.h"
#include "jsapi/StbPVR.h"
#include "jsapi/deprecated/stb_display.h"
#include "jsapi/deprecated/stb_media.h"

#include <QFile>
#include <QWebFrame>

#include <utility>

namespace {

const char mediaName[] = "StbMedia";

// What pages have connected to an object's signals. The engine makes each such connection a child of the object, whose
// only child otherwise is its log file.
void dropScriptConnections(QObject *object)
{
    const QObjectList &children = object->children();
    for (QObject *child : children) {
        // Later, because a page can be replaced from within a signal.
        if (!qobject_cast<QFile *>(child))
            QMetaObject::invokeMethod(child, "deleteLater");
    }
}

} // namespace

ScriptObjects::ScriptObjects(QObject *owner)
    : owner(owner)
    , media(KavroJS::StbMedia::instance())
    , display(KavroJS::StbDisplay::instance())
    , pvr(KavroJS::StbPVR::instance())
    , deprecatedMedia(new KavroJSDeprecated::stb_media)
    , deprecatedDisplay(new KavroJSDeprecated::stb_display)
    , pageEvents(nullptr)
    , pageGuards(nullptr)
{
    const ScriptObject objects[] = {{mediaName, media},
                                    {"StbDisplay", display},
                                    {"StbPVR", pvr},
                                    {"stb_media", deprecatedMedia},
                                    {"stb_display", deprecatedDisplay}};
    DeleteLaterFilter *filter = new DeleteLaterFilter(owner);
    for (const ScriptObject &script : objects) {
        scriptObjects.append(script);
        script.object->installEventFilter(filter);
    }
}

ScriptObjects::~ScriptObjects()
{
    qDeleteAll(owner->findChildren<PageGuards *>()); // before what they stand for, also those of pages before
    // A page that has connected a function to destroyed() would be called with an object that is no more.
    for (const ScriptObject &script : std::as_const(scriptObjects))
        QObject::disconnect(script.object, nullptr, nullptr, nullptr);
    KavroJS::StbMedia::destroyInstance();
    KavroJS::StbDisplay::destroyInstance();
    KavroJS::StbPVR::destroyInstance();
    delete deprecatedMedia;
    delete deprecatedDisplay;
}

QObject *ScriptObjects::mediaObject() const
{
    return media;
}

QObject *ScriptObjects::displayObject() const
{
    return display;
}

QObject *ScriptObjects::deprecatedMediaObject() const
{
    return deprecatedMedia;
}

void ScriptObjects::addTo(QWebFrame *frame)
{
    leavePage();
    pageEvents = new PageEvents(frame, QLatin1String(mediaName), owner);
    if (QtCompat::engineNeedsProtection) {
        addGuards(frame);
    } else {
        for (const ScriptObject &script : std::as_const(scriptObjects))
            frame->addToJavaScriptWindowObject(QLatin1String(script.name), script.object);
    }
    pageEvents->addSetter();
}

// A page can be replaced from within an event or a call.
void ScriptObjects::leavePage()
{
    if (pageEvents)
        pageEvents->deleteLater();
    if (pageGuards)
        pageGuards->deleteLater();
    // They would keep the page before from being freed, and call it.
    for (const ScriptObject &script : std::as_const(scriptObjects))
        dropScriptConnections(script.object);
}

void ScriptObjects::addGuards(QWebFrame *frame)
{
    pageGuards = new PageGuards(frame, owner);
    for (const ScriptObject &script : std::as_const(scriptObjects))
        pageGuards->add(QLatin1String(script.name), script.object);
    pageGuards->finish(pvr);
}

void ScriptObjects::setJsCallback(const QString &code)
{
    jsCallbackCode = code;
    scriptToRun.clear();
}

// The engine converts the value of a script, which must not be one that crashes it. A text that is not whole has none,
// and what follows would complete it.
QString ScriptObjects::withoutValue(const QString &code)
{
    const bool hasValue = QtCompat::engineNeedsProtection && (!pageEvents || pageEvents->isWhole(code));
    return hasValue ? code + QLatin1String("\n;0") : code;
}

void ScriptObjects::deliver(int argument, int code, QWebFrame *frame)
{
    media->setLastEvent(argument, code);
    deprecatedMedia->lastEventId = argument;
    deprecatedMedia->lastEventType = code;

    if (pageEvents)
        pageEvents->deliver(argument, code);
    if (jsCallbackCode.isEmpty())
        return;
    if (scriptToRun.isEmpty())
        scriptToRun = withoutValue(jsCallbackCode);
    frame->evaluateJavaScript(scriptToRun);
}
