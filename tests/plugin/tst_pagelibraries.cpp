// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "WrappersBeside.h"
#include "tests/platform/RecordingPlatform.h"
#include "tests/support/HostedPlugin.h"

#include <QCoreApplication>
#include <QFile>
#include <QtTest>

#include <memory>

namespace {

// What a library's files are, in the order in which they are loaded.
struct Library
{
    const char *name;
    QStringList files;
    bool needsTodaysEngine;
};

const QList<Library> &libraries()
{
    static const QList<Library> all = {
        {"jQuery 1.4", {"jquery-1.4.js"}, false},
        {"jQuery 1.12", {"jquery-1.12.js", "jquery-ui.js"}, false},
        {"jQuery 2", {"jquery-2.js", "jquery-ui.js"}, false},
        {"jQuery 3", {"jquery-3.js", "jquery-ui.js"}, true},
        {"lodash", {"lodash.js"}, false},
        {"Prototype",
         {"prototype/Prototype.js", "prototype/Object.js", "prototype/Class.js", "prototype/Function.js"},
         false},
        {"MooTools", {"mootools.js"}, false}};
    return all;
}

// A library's text, as a page runs it; empty, with a message, if there is none. Those in folders are modules, each of
// which names those that it needs.
QString textOf(const QString &fileName)
{
    const QString folder = QCoreApplication::applicationDirPath() + "/libraries/";
    QFile file(folder + fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("%s is missing; run scripts/install-libraries build/PRESET/tests/libraries",
                 qPrintable(file.fileName()));
        return {};
    }
    const QString text = QString::fromUtf8(file.readAll());
    if (!fileName.contains('/'))
        return text;
    return "var modules = modules || {};"
           "function require(name) { return modules[name.replace(/^\\.\\/|\\.js$/g, '')]; }"
           "(function (module) {"
        + text + "\nmodules['" + QFileInfo(fileName).baseName() + "'] = module.exports; })({exports: {}});";
}

} // namespace

// Portals are made with libraries, which look at an object before they copy it, inherit from it or call it. They take a
// script object for the same as the engine's own wrapper of one.
class TestPageLibraries : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void librariesTakeGuardsForWrappers_data();
    void librariesTakeGuardsForWrappers();

private:
    std::unique_ptr<HostedPlugin> m_plugin;
    WrappersBeside m_wrappers;
};

void TestPageLibraries::initTestCase()
{
    HostedPlugin::writeManifest(PluginManifest());
    m_plugin = std::make_unique<HostedPlugin>();
    QVERIFY(m_plugin->start());
}

void TestPageLibraries::librariesTakeGuardsForWrappers_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("expected"); // as JSON
    struct Use
    {
        const char *script, *expected;
    };
    const auto rows = [](const QStringList &names, const QList<Use> &uses) {
        for (const Library &library : libraries()) {
            if (!names.contains(library.name) || (library.needsTodaysEngine && HostedPlugin::hasBoxEngine()))
                continue;
            for (const Use &use : uses)
                QTest::addRow("%s: %s", library.name, use.script)
                    << QString(library.name) << QString(use.script) << QString(use.expected);
        }
    };

    rows({"jQuery 1.4", "jQuery 1.12", "jQuery 2", "jQuery 3"},
         {{"typeof $.extend({}, object)['Stop(int)']", R"js("function")js"},
          {"(function () { $.extend(object, {a: {b: 1}, Stop: 5}); return [object.a.b, typeof object.Stop]; })()",
           R"js([1,"function"])js"},
          {"(function () { $.extend(true, object, {a: {b: 1}, Stop: 5}); return [object.a.b, typeof object.Stop]; })()",
           R"js([1,"function"])js"},
          {"[$.isFunction(object), $.isArray(object), $.isEmptyObject(object)]", "[false,false,false]"},
          {"[$(object).length, $(object)[0] === object, $.makeArray(object).length, $.inArray(object, [1, object])]",
           "[1,true,1,1]"},
          {"(function () { var heard; $(object).bind('told', function () { heard = this === object; }).trigger('told');"
           "return heard; })()",
           "true"},
          {"(function () { $.data(object, 'key', 5); return $.data(object, 'key'); })()", "5"},
          {"$.map([object], function (each) { return each; })[0] === object", "true"},
          {"(function () { var names = []; $.each(object, function (name) { names.push(name); });"
           "return names.indexOf('Stop(int)') >= 0; })()",
           "true"}});
    // Until its third version it takes any object for a plain one, and copies it.
    for (const bool isKept : {false, true}) {
        const char *const kept = isKept ? "true" : "false";
        const char *const method = isKept ? R"js("function")js" : R"js("undefined")js";
        const QStringList withWidgets = isKept ? QStringList{"jQuery 3"} : QStringList{"jQuery 1.12", "jQuery 2"};
        rows(isKept ? withWidgets : QStringList("jQuery 1.4") + withWidgets,
             {{"!$.isPlainObject(object)", kept},
              {"$.extend(true, {}, {media: object}).media === object", kept},
              {"$.extend(true, {media: {a: 1}}, {media: object}).media === object", kept},
              {"$.extend(true, [], [object, {media: [object]}])[1].media[0] === object", kept},
              {"typeof $.extend(true, {}, {media: object}).media.Stop", method}});
        rows(withWidgets,
             {{"(function () { $.widget('test.player', {options: {media: null}});"
               "return $('<div>').player({media: object}).player('option', 'media') === object; })()",
               kept},
              {"(function () { $.widget('test.player', {options: {media: object}});"
               "return $('<div>').player().player('option', 'media') === object; })()",
               kept},
              {"(function () { $.widget('test.player', {options: {deep: {media: object}}});"
               "return $('<div>').player({deep: {a: 1}}).player('option', 'deep').media === object; })()",
               kept},
              {"(function () { $.widget('test.player', {options: {media: {}}});"
               "return typeof $('<div>').player({media: object}).player('option', 'media').Stop; })()",
               method},
              {"(function () { $.widget('test.player', {}); var player = $('<div>').player();"
               "player.player('option', {deep: {media: object}});"
               "return player.player('option', 'deep').media === object; })()",
               "true"},
              {"$('<div>').appendTo('body').dialog({autoOpen: false, media: object}).dialog('option', 'media') === "
               "object",
               kept},
              {"$.widget.extend({}, {media: object}).media === object", kept}});
    }
    rows({"lodash"},
         {{"_.merge({}, {media: object}).media === object", "true"},
          {"typeof _.merge({media: {a: 1}}, {media: object}).media.Stop", R"js("function")js"},
          {"(function () { _.merge(object, {a: {b: 1}, Stop: 5}); return [object.a.b, typeof object.Stop]; })()",
           R"js([1,"function"])js"},
          {"_.cloneDeep({media: object}).media === object", "true"},
          {"_.cloneDeep([object])[0] === object", "true"},
          {"[_.cloneDeep(object), _.clone(object)]", "[{},{}]"},
          {"_.clone({media: object}).media === object", "true"},
          {"_.create(object, {Stop: function () { return 'mine'; }}).Stop(-5)", R"js("mine")js"},
          {"(function () { var heir = _.create(object); heir.Stop = 5; heir.onEvent = 6;"
           "return [heir.Stop, heir.onEvent, heir.Pause(-5), object.onEvent]; })()",
           R"js([5,6,0,""])js"},
          {"_.defaultsDeep({}, {media: object}).media === object", "true"},
          {"(function () { var filled = _.defaultsDeep({media: {a: 1}}, {media: object}).media;"
           "return [filled === object, filled.a]; })()",
           "[false,1]"},
          {"(function () { _.assign(object, {a: 1, Stop: 5}); return [object.a, typeof object.Stop]; })()",
           R"js([1,"function"])js"},
          {"(function () { _.extend(object, {a: 1, Stop: 5}); return [object.a, typeof object.Stop]; })()",
           R"js([1,"function"])js"},
          {"(function () { _.set(object, 'a.b', 5); return [_.get(object, 'a.b'), _.has(object, 'Stop')]; })()",
           "[5,true]"},
          {"[_.isPlainObject(object), _.isObject(object), _.isFunction(object), _.isEmpty(object), "
           "_.isArrayLike(object)]",
           "[false,true,false,false,false]"},
          {"[_.isEqual(object, object), _.isEqual(object, {}), _.isEqual({media: object}, {media: object})]",
           "[true,false,true]"},
          {"[_.invoke(object, 'Stop', -5), _.result(object, 'onEvent'), _.method('Stop', -5)(object)]",
           R"js([0,"",0])js"},
          {"[_.bind(object.Stop, object, -5)(), _.bindKey(object, 'Stop', -5)(), _.partial(object.Stop, -5)()]",
           "[0,0,0]"},
          {"(function () { _.bindAll(object, ['Stop']); return object.Stop(-5); })()", "0"},
          {"_.includes(_.keys(object), 'Stop(int)')", "true"},
          {"_.omit({media: object, a: 1}, ['a']).media === object", "true"}});
    rows({"Prototype"},
         {{"typeof Object.extend({}, object)['Stop(int)']", R"js("function")js"},
          {"(function () { Object.extend(object, {a: 1, Stop: 5}); return [object.a, typeof object.Stop]; })()",
           R"js([1,"function"])js"},
          {"(function () { var copy = Object.clone(object); return [copy.onEvent, typeof copy['Stop(int)']]; })()",
           R"js(["","function"])js"},
          {"(function () { var Player = Class.create({initialize: function (media) { this.media = media; },"
           "stop: function () { return this.media.Stop(-5); }}); return new Player(object).stop(); })()",
           "0"},
          {"(function () { var Player = Class.create({media: object}); return new Player().media === object; })()",
           "true"},
          {"(function () { function Media() {} Media.prototype = object; Media.subclasses = [];"
           "var Player = Class.create(Media, {Stop: function () { return 'mine'; }}); return new Player().Stop(-5); "
           "})()",
           R"js("mine")js"},
          {"object.Stop.bind(object)(-5)", "0"},
          {"object.Stop.bind(object, -5)()", "0"},
          {"object.Stop.curry(-5)()", "0"},
          {"object.Stop.methodize() === object.Stop.methodize()", "true"},
          {"object.Stop.wrap(function (stop, player) { return stop(player); })(-5)", "0"}});
    rows({"MooTools"},
         {{"typeOf(object)", R"js("object")js"},
          {"(function () { var Player = new Class({media: object}); return typeof new Player().media.Stop; })()",
           R"js("undefined")js"},
          {"(function () { var Player = new Class({initialize: function (media) { this.media = media; },"
           "stop: function () { return this.media.Stop(-5); }}); return new Player(object).stop(); })()",
           "0"},
          {"(function () { function Media() {} Media.prototype = object;"
           "var Player = new Class({Extends: Media, Stop: function () { return 'mine'; }}); return new "
           "Player().Stop(-5); })()",
           R"js("mine")js"},
          {"(function () { function Media() {} Media.prototype = object; var Player = new Class({Extends: Media,"
           "Stop: function (player) { return this.parent(player); }}); return new Player().Stop(-5); })()",
           "0"},
          {"typeof Object.merge({}, {media: object}).media.Stop", R"js("undefined")js"},
          {"typeof Object.clone({media: object}).media.Stop", R"js("undefined")js"},
          {"typeof Object.clone(object).onEvent", R"js("string")js"},
          {"(function () { Object.append(object, {a: 1, Stop: 5}); return [object.a, typeof object.Stop]; })()",
           R"js([1,"function"])js"},
          {"(function () { Object.merge(object, {a: {b: 1}}); return object.a.b; })()", "1"},
          {"Object.keys(object).indexOf('Stop(int)') >= 0", "true"},
          {"Object.keyOf({media: object}, object)", R"js("media")js"},
          {"[object.Stop.pass(-5)(), object.Stop.attempt(-5)]", "[0,0]"}});
}

void TestPageLibraries::librariesTakeGuardsForWrappers()
{
    QFETCH(const QString, library);
    QFETCH(const QString, script);
    QStringList files;
    for (const Library &each : libraries()) {
        if (each.name == library)
            files = each.files;
    }
    RecordingPlatform::reset();
    QStringList results;
    for (const QString &object : {WrappersBeside::nameBeside("StbMedia"), QString("StbMedia")}) {
        // Anew, since some write to the object's own name, and define what they are tried with.
        QVERIFY(m_wrappers.load(m_plugin.get(), "<!DOCTYPE html><title>Libraries</title>"));
        for (const QString &file : std::as_const(files)) {
            const QString text = textOf(file);
            QVERIFY(!text.isEmpty());
            m_plugin->evaluate(text);
        }
        results += m_plugin->evaluateToJson("(function (object) { return " + script + "; })(" + object + ")");
    }
    QTEST(results[0], "expected");
    QCOMPARE(results[1], results[0]);
}

QTEST_MAIN(TestPageLibraries)

#include "tst_pagelibraries.moc"
