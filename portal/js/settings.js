// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The settings. The box keeps the resolution, the portal the rest.
var Settings = (function () {
    'use strict';

    var resolutions = ['1280x720', '1920x1080'];
    var keyDelays = [0, 100, 200, 400]; // milliseconds
    var logs = ['off', 'file', 'output'];
    var logTexts = { off: 'off', file: 'to the log file', output: 'to the output' };

    function applyKeyDelay() {
        if (window.StbDisplay)
            StbDisplay.SetKeyEventPeriod(Memory.get('keyDelay', 0));
    }

    function log(argument, type) {
        var target = Memory.get('log', 'off');
        var text = 'Event ' + type + ' (' + BoxEvents.nameOf(type) + ') of ' + argument;
        if (target === 'file')
            StbDisplay.Log(text);
        else if (target === 'output')
            StbDisplay.Debug(text);
    }

    function changeResolution(step) {
        var next = Menu.neighbour(resolutions, StbDisplay.GetBootParamValue('dfbres'), step);
        var isDone = StbDisplay.SetBootParamValue('dfbres', next) === 0;
        Notice.show(isDone ? next + ' from the next start on' : 'The box leaves the resolution to its own settings');
    }

    function row(id, name, about, value, change) {
        return {
            id: id,
            name: name,
            about: about,
            value: value,
            change: function (step) {
                change(step);
                Screens.refresh();
            }
        };
    }

    function volumeRow() {
        return row('volume', 'Volume', 'of the player', Volume.text(), Volume.change);
    }

    Screens.add('settings', {
        layout: 'page',
        title: function () {
            return 'Settings';
        },
        hints: function () {
            return [['\u25c2 \u25b8', 'change'], ['Back', 'return']];
        },
        rows: function () {
            if (!window.StbDisplay)
                return [volumeRow()];
            return [
                volumeRow(),
                row('resolution', 'Resolution', 'from the next start on',
                    StbDisplay.GetBootParamValue('dfbres'), changeResolution),
                row('keyDelay', 'Key delay', 'between two presses of a key', Memory.get('keyDelay', 0) + ' ms',
                    function (step) {
                        Memory.set('keyDelay', Menu.neighbour(keyDelays, Memory.get('keyDelay', 0), step));
                        applyKeyDelay();
                    }),
                row('log', 'Log', 'a line for each event', logTexts[Memory.get('log', 'off')], function (step) {
                    Memory.set('log', Menu.neighbour(logs, Memory.get('log', 'off'), step));
                })
            ];
        }
    });

    function start() {
        applyKeyDelay();
        BoxEvents.listen(log);
    }

    return { start: start };
}());
