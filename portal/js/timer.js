// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The timer: schedules a recording of a channel.
var Timer = (function () {
    'use strict';

    var starts = [0, 1, 2, 5, 15, 60]; // minutes from now
    var durations = [10, 30, 60, 300, 1800, 7200]; // seconds

    var channel, start, duration;

    // Opens the timer's screen for a channel, or for the one watched last.
    function open(which) {
        channel = which && which.isLive ? which : Channels.last();
        start = 0;
        duration = 30;
        Screens.go('timer');
    }

    function startText() {
        return start ? 'in ' + Texts.duration(start * 60) : 'now';
    }

    function schedule() {
        var begin = new Date(Date.now() + start * 60000);
        var file = Texts.fileName(channel.name, begin) + '.ts';
        var answer = StbPVR.AddRecord(channel.address, file, begin, duration);
        if (answer < 0) {
            Notice.show('The box refuses the recording (' + answer + ')');
            return;
        }
        Notice.show('The recording begins ' + startText());
        Screens.back();
    }

    // A row that changes something to its neighbour and shows it.
    function choiceRow(id, name, value, change) {
        return {
            id: id,
            name: name,
            value: value,
            change: function (step) {
                change(step);
                Screens.refresh();
            }
        };
    }

    Screens.add('timer', {
        layout: 'page',
        title: function () {
            return 'New recording';
        },
        hints: function () {
            return [['\u25c2 \u25b8', 'change'], ['OK', 'choose'], ['Back', 'return']];
        },
        rows: function () {
            return [
                { id: 'schedule', mark: '\u25cf', name: 'Record', kind: 'lead running', ok: schedule },
                choiceRow('channel', 'Channel', channel.name, function (step) {
                    channel = Channels.after(channel, step);
                }),
                choiceRow('start', 'Begin', startText(), function (step) {
                    start = Menu.neighbour(starts, start, step);
                }),
                choiceRow('duration', 'Length', Texts.duration(duration), function (step) {
                    duration = Menu.neighbour(durations, duration, step);
                })
            ];
        }
    });

    return { open: open };
}());
