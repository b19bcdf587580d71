// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The picture on the full screen, with a bar over it that goes by itself, and the choice of tracks.
(function () {
    'use strict';

    var BAR_SECONDS = 5;
    var SEEK_MILLISECONDS = 10000;
    var timer = 0;

    function isShown() {
        return Screens.current() === 'video';
    }

    // Only over a moving picture is the bar in the way.
    function hideBar() {
        if (Player.state() === Player.PLAYING)
            Dom.setClass(document.body, 'quiet', true);
    }

    function showBar() {
        Dom.setClass(document.body, 'quiet', false);
        clearTimeout(timer);
        timer = setTimeout(hideBar, BAR_SECONDS * 1000);
    }

    function playNext(places) {
        var channel = Channels.after(Player.source(), places);
        Memory.set('channel', channel.address);
        Player.play(channel);
    }

    function handleKey(code) {
        if (Keys.isArrow(code))
            showBar();
        if (Player.source().isLive && (code === Keys.UP || code === Keys.DOWN))
            playNext(code === Keys.UP ? -1 : 1);
        else if (!Player.source().isLive && (code === Keys.LEFT || code === Keys.RIGHT))
            Player.seek(code === Keys.LEFT ? -SEEK_MILLISECONDS : SEEK_MILLISECONDS);
        else if (code === Keys.OK)
            Screens.go('tracks');
        else
            return Keys.isArrow(code);
        return true;
    }

    Screens.add('video', {
        layout: 'video',
        hints: function () {
            var arrows = Player.source().isLive ? ['\u25b4 \u25be', 'channel'] : ['\u25c2 \u25b8', 'wind'];
            return [arrows, ['OK', 'options'], ['Back', 'return']];
        },
        enter: showBar,
        handleKey: handleKey
    });

    function trackRow(kind, track, chosen, choose) {
        return {
            id: kind + '-' + track.id,
            name: track.id < 0 ? 'None' : Tracks.nameOf(track),
            about: track.supported ? track.descr : 'this box cannot play it',
            mark: track.id === chosen ? '\u2713' : ' ',
            ok: function () {
                choose(track.id);
            }
        };
    }

    function actionRow() {
        if (!Player.source().isLive)
            return {
                id: 'pause',
                name: Player.state() === Player.PAUSED ? 'Continue' : 'Pause',
                kind: 'lead',
                ok: Player.togglePause
            };
        return {
            id: 'record',
            name: 'Record this channel',
            kind: 'lead',
            ok: function () {
                Timer.open(Player.source());
            }
        };
    }

    function audioRow(track) {
        return trackRow('audio', track, Tracks.chosenAudio(), Tracks.chooseAudio);
    }

    function subtitlesRow(track) {
        return trackRow('subtitles', track, Tracks.chosenSubtitles(), Tracks.chooseSubtitles);
    }

    function heading(text) {
        return { name: text, kind: 'heading' };
    }

    Screens.add('tracks', {
        layout: 'overlay',
        hints: function () {
            return [];
        },
        title: function () {
            return Player.source().name;
        },
        rows: function () {
            var none = { id: -1, descr: '', supported: 1 };
            return [actionRow(), heading('Sound')].concat(Tracks.audio().map(audioRow), heading('Subtitles'),
                [none].concat(Tracks.subtitles()).map(subtitlesRow));
        },
        // There is nothing beside the rows but the picture.
        handleKey: function (code) {
            if (code === Keys.LEFT)
                Screens.back();
            return code === Keys.LEFT || code === Keys.RIGHT;
        }
    });

    Dom.byId('picture').addEventListener('click', function () {
        Screens.go('video');
    }, false);

    Player.listen(function () {
        if (isShown() && Player.state() === Player.ENDED)
            Screens.back();
        else if (isShown())
            showBar();
    });
}());
