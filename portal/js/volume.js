// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The player's volume, by the remote control's keys and in the settings.
var Volume = (function () {
    'use strict';

    var STEP = 5;

    function text() {
        if (Player.id() < 0)
            return 'no player';
        return StbMedia.IsMute(Player.id()) ? 'muted' : String(StbMedia.GetVolume(Player.id()));
    }

    // Louder or, with a negative number of steps, quieter.
    function change(steps) {
        var volume;
        if (Player.id() < 0)
            return;
        volume = StbMedia.GetVolume(Player.id()) + steps * STEP;
        StbMedia.SetVolume(Player.id(), Math.max(0, Math.min(100, volume)));
        StbMedia.SetMute(Player.id(), 0);
    }

    function toggleMute() {
        if (Player.id() >= 0)
            StbMedia.SetMute(Player.id(), StbMedia.IsMute(Player.id()) ? 0 : 1);
    }

    // Acts on the keys of the volume. Says whether it was one.
    function handleKey(code) {
        if (code === Keys.VOLUME_UP)
            change(1);
        else if (code === Keys.VOLUME_DOWN)
            change(-1);
        else if (code === Keys.MUTE)
            toggleMute();
        else
            return false;
        Notice.show('Volume: ' + text());
        return true;
    }

    return { text: text, change: change, handleKey: handleKey };
}());
