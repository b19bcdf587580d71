// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The recordings: their list, and what can be done with one of them.
var Recordings = (function () {
    'use strict';

    var SCHEDULED = 0, RUNNING = 1, FAILED = 3;
    var stateTexts = ['Scheduled', 'Recording', 'Done', 'Failed', 'Interrupted'];
    var stateKinds = ['scheduled', 'running', 'done', 'failed', 'failed'];

    var chosen = -1;

    // Those of the box, the latest first. What is sorted is a copy, since the box's own list is not quite an array.
    function all() {
        var records = window.StbPVR ? StbPVR.GetRecordsList().slice() : [];
        return records.sort(function (a, b) {
            return b.start - a.start || b.id - a.id;
        });
    }

    function find(id) {
        return all().filter(function (record) {
            return record.id === id;
        })[0];
    }

    function nameOf(record) {
        var channel = Channels.withAddress(record.addr);
        return channel ? channel.name : record.addr;
    }

    function timeOf(record) {
        return Texts.dayAndTime(record.start) + '  \u00b7  ' + Texts.duration(record.duration);
    }

    function choose(id) {
        chosen = id;
        Screens.go('recording');
    }

    function recordRow(record) {
        return {
            id: 'recording-' + record.id,
            name: nameOf(record),
            about: timeOf(record),
            value: stateTexts[record.state],
            kind: stateKinds[record.state],
            ok: function () {
                choose(record.id);
            }
        };
    }

    Screens.add('recordings', {
        layout: 'page',
        title: function () {
            return 'Recordings';
        },
        hints: function () {
            return [['Arrows', 'choose'], ['OK', 'open'], ['Back', 'return']];
        },
        rows: function () {
            var add = { id: 'add', mark: '+', name: 'New recording', kind: 'lead', ok: Timer.open };
            if (!window.StbPVR)
                return [{ name: 'This page has no StbPVR', about: 'Nothing can be recorded' }];
            return [add].concat(all().map(recordRow));
        }
    });

    function sourceOf(record) {
        return {
            name: nameOf(record),
            isLive: false,
            start: function (player) {
                return StbMedia.PlayFile(player, '/' + record.file, 0, record.duration * 1000, 0, '');
            }
        };
    }

    function play(record) {
        Player.play(sourceOf(record));
        Screens.go('video');
    }

    function playRow(record) {
        return {
            id: 'play',
            mark: '\u25b6',
            name: 'Play',
            kind: 'lead',
            ok: function () {
                play(record);
            }
        };
    }

    function remove(record) {
        var answer = StbPVR.DeleteRecord(record.id);
        if (answer < 0)
            Notice.show('The box refuses to delete the recording (' + answer + ')');
        else
            Screens.back();
    }

    function removeRow(record) {
        return {
            id: 'delete',
            mark: '\u00d7',
            name: record.state === SCHEDULED || record.state === RUNNING ? 'Cancel' : 'Delete',
            kind: 'lead',
            ok: function () {
                remove(record);
            }
        };
    }

    Screens.add('recording', {
        layout: 'page',
        title: function () {
            var record = find(chosen);
            return record ? nameOf(record) : '';
        },
        hints: function () {
            return [['Arrows', 'choose'], ['OK', 'do it'], ['Back', 'return']];
        },
        rows: function () {
            var record = find(chosen);
            var rows = [];
            if (!record)
                return [{ id: 'none', name: 'This recording is gone', ok: Screens.back }];
            if (record.state !== SCHEDULED && record.state !== FAILED)
                rows.push(playRow(record));
            rows.push(removeRow(record));
            rows.push({ name: stateTexts[record.state], about: record.file, kind: stateKinds[record.state] });
            rows.push({ name: 'Begins', about: timeOf(record) });
            return rows;
        },
        // A recording plays on the full screen only: the window goes on with the channel.
        enter: function () {
            if (!Player.source().isLive)
                Player.play(Channels.last());
        }
    });

    BoxEvents.listen(function () {
        Screens.refresh();
    }, [BoxEvents.RECORDS]);

    return { all: all };
}());
