// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Starts the portal: the header's texts and the keys.
(function () {
    'use strict';

    function twoDigits(number) {
        return (number < 10 ? '0' : '') + number;
    }

    function showTime() {
        var now = new Date();
        Screens.setText('clock', twoDigits(now.getHours()) + ':' + twoDigits(now.getMinutes()));
        setTimeout(showTime, 1000 * (60 - now.getSeconds()));
    }

    // The model of the box, if the page runs on one, and the size of the page.
    function showBox() {
        var texts = [window.innerWidth + ' \u00d7 ' + window.innerHeight];
        if (window.StbDisplay && StbDisplay.DeviceModel)
            texts.unshift(StbDisplay.DeviceModel);
        Screens.setText('box', texts.join('  \u00b7  '));
    }

    // Says whether the portal uses the key.
    function handleKey(code) {
        if (Keys.isBack(code))
            Screens.back();
        else if (Screens.current() === 'members')
            return false;
        else if (code === Keys.OK)
            Focus.current().click();
        else if (code >= Keys.LEFT && code <= Keys.DOWN)
            Focus.move(code);
        else
            return false;
        return true;
    }

    document.addEventListener('keydown', function (event) {
        KeyHistory.add(event.keyCode);
        if (handleKey(event.keyCode))
            event.preventDefault();
    });
    window.addEventListener('resize', showBox);

    Screens.start();
    showBox();
    showTime();
}());
