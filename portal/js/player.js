// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The page's only player: what it plays, and what becomes of it. It plays sources: objects with a name, a flag isLive
// and a function start(player), which has the box begin and returns its answer.
var Player = (function () {
    'use strict';

    var OPENING = 1, PLAYING = 2, PAUSED = 3, ENDED = 4, ERROR = 5;

    var stateTexts = ['Stopped', 'Opening\u2026', 'Playing', 'Paused', 'At the end', 'This cannot be played'];

    var id = -1;
    var source = null;
    var problem = '';
    var listeners = [];

    // Has a function called whenever the state, the source or the tracks have changed.
    function listen(listener) {
        listeners.push(listener);
    }

    function changed() {
        listeners.forEach(function (listener) {
            listener();
        });
    }

    // The video is where the page's picture is.
    function place() {
        var box = Page.placeOf(Dom.byId('picture'));
        if (id >= 0)
            StbMedia.SetPlayerViewPort(id, box.left, box.top, box.width, box.height);
    }

    function create() {
        if (!window.StbMedia) {
            problem = 'This page has no StbMedia: it is not on a box';
            return;
        }
        id = StbMedia.CreatePlayer();
        if (id < 0) {
            problem = 'The box has no player to give (' + id + ')';
            return;
        }
        // A new box is silent.
        if (StbMedia.GetVolume(id) <= 0)
            StbMedia.SetVolume(id, 50);
        StbMedia.SetSubtitlesVisible(id, 0);
        place();
    }

    // Plays a source in place of what plays now.
    function play(next) {
        var answer;
        source = next;
        problem = '';
        if (id < 0)
            create();
        if (id >= 0) {
            answer = source.start(id);
            if (answer < 0)
                problem = 'The box refuses to play this (' + answer + ')';
        }
        changed();
    }

    // Players outlive their page: what a page does not close stays open.
    function close() {
        if (id >= 0)
            StbMedia.ClosePlayer(id);
        id = -1;
    }

    function state() {
        return id < 0 || problem ? ERROR : StbMedia.GetPlayerState(id);
    }

    function stateText() {
        return problem || stateTexts[state()];
    }

    function isActive() {
        return state() === OPENING || state() === PLAYING || state() === PAUSED;
    }

    function position() {
        return isActive() ? StbMedia.GetPosition(id) : 0;
    }

    // 0 if there is none, as for a channel.
    function duration() {
        return isActive() && !source.isLive ? StbMedia.GetDuration(id) : 0;
    }

    function seek(milliseconds) {
        StbMedia.SetPosition(id, Math.max(0, position() + milliseconds));
    }

    function togglePause() {
        if (state() === PAUSED)
            StbMedia.Continue(id);
        else
            StbMedia.Pause(id);
    }

    // The channels are clips, and a channel does not end: it is taken back to its beginning before it does.
    function keepOn() {
        var length = StbMedia.GetDuration(id);
        if (source.isLive && length > 0 && StbMedia.GetPosition(id) > length - 1000)
            StbMedia.SetPosition(id, 0);
    }

    function hear(player, type) {
        if (player !== id)
            return;
        if (type === BoxEvents.POSITION)
            keepOn();
        else if (type === BoxEvents.STATE && state() === ENDED && source.isLive)
            play(source);
        else
            changed();
    }

    function start() {
        BoxEvents.listen(hear, [BoxEvents.STATE, BoxEvents.METADATA, BoxEvents.POSITION, BoxEvents.AUDIO,
            BoxEvents.VIDEO, BoxEvents.SUBTITLES]);
        window.addEventListener('unload', close, false);
    }

    return {
        PLAYING: PLAYING, PAUSED: PAUSED, ENDED: ENDED,
        id: function () { return id; },
        source: function () { return source; },
        start: start, listen: listen, place: place, play: play, state: state, stateText: stateText,
        isActive: isActive, position: position, duration: duration, seek: seek, togglePause: togglePause
    };
}());
