// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The channels. These are clips beside the page; a real portal names the addresses of its streams here.
var Channels = (function () {
    'use strict';

    // A player fetches by itself and knows nothing of the page, so it needs whole addresses.
    function absolute(address) {
        var link = document.createElement('a');
        link.href = address;
        return link.href;
    }

    function makeChannel(number, name, about, address) {
        var self = { number: number, name: name, about: about, address: absolute(address), isLive: true };
        self.start = function (player) {
            return StbMedia.PlayHttp(player, self.address, '');
        };
        return self;
    }

    var all = [
        makeChannel(1, 'Test card', 'Two languages, two subtitles', 'media/testcard.mkv'),
        makeChannel(2, 'Life', 'Cells are born, live and die', 'media/life.mkv'),
        makeChannel(3, 'Clock', 'It ticks', 'media/clock.mkv')
    ];

    // The channel with this address; undefined if there is none.
    function withAddress(address) {
        return all.filter(function (channel) {
            return channel.address === address;
        })[0];
    }

    // The channel so many places after another one, round and round.
    function after(channel, places) {
        return all[(all.indexOf(channel) + places + all.length) % all.length];
    }

    // The channel watched last.
    function last() {
        return withAddress(Memory.get('channel')) || all[0];
    }

    return { all: all, withAddress: withAddress, after: after, last: last };
}());
