// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// What is told of what plays: below the picture and, on the full screen, in the bar over it.
var Playing = (function () {
    'use strict';

    function kindOf(source) {
        return source.isLive ? 'Channel ' + source.number : 'Recording';
    }

    function showPosition() {
        var length = Player.duration();
        var position = Player.position();
        Dom.setClass(document.body, 'measured', length > 0);
        Dom.setText('playing-position', length ? Texts.position(position) + ' / ' + Texts.position(length) : '');
        Dom.byId('playing-progress').style.width = length ? 100 * position / length + '%' : 0;
    }

    function show() {
        var isPlaying = Player.state() === Player.PLAYING;
        Dom.setText('playing-kind', kindOf(Player.source()));
        Dom.setText('playing-name', Player.source().name);
        Dom.setText('playing-state', Player.stateText());
        Dom.setText('playing-tracks', Tracks.summary());
        Dom.setText('picture-note', isPlaying ? '' : Player.stateText());
        showPosition();
    }

    function start() {
        Player.listen(show);
        BoxEvents.listen(showPosition, [BoxEvents.POSITION]);
    }

    return { start: start };
}());
