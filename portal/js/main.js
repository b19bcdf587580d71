// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Starts the portal: the header, the keys, the player.
(function () {
    'use strict';

    function showTime() {
        var now = new Date();
        Dom.setText('clock', Texts.time(now));
        setTimeout(showTime, 1000 * (60 - now.getSeconds()));
    }

    // The model of the box, if the page runs on one, and the size of the page.
    function showBox() {
        var texts = [window.innerWidth + ' \u00d7 ' + window.innerHeight];
        if (window.StbDisplay && StbDisplay.DeviceModel)
            texts.unshift(StbDisplay.DeviceModel);
        Dom.setText('box', texts.join('  \u00b7  '));
    }

    document.addEventListener('keydown', function (event) {
        KeyHistory.add(event.keyCode);
        if (Volume.handleKey(event.keyCode) || Screens.handleKey(event.keyCode))
            event.preventDefault();
    }, false);
    window.addEventListener('resize', function () {
        Page.scale();
        Player.place();
        showBox();
    }, false);

    Page.scale();
    Memory.start();
    BoxEvents.start();
    Settings.start();
    Player.start();
    Playing.start();
    Player.listen(Screens.refresh);
    showBox();
    showTime();
    Screens.go('home');
    Player.play(Channels.last());
}());
