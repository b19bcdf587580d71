// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The first screen: the channels, and the ways to all other screens.
(function () {
    'use strict';

    // OK plays a channel, and once it plays shows it on the full screen.
    function choose(channel) {
        if (Player.source() === channel && Player.isActive()) {
            Screens.go('video');
        } else {
            Memory.set('channel', channel.address);
            Player.play(channel);
        }
    }

    function channelRow(channel) {
        return {
            id: 'channel-' + channel.number,
            mark: channel.number,
            name: channel.name,
            about: channel.about,
            kind: Player.source() === channel ? 'chosen' : '',
            ok: function () {
                choose(channel);
            }
        };
    }

    function leadRow(screen, name, value) {
        return {
            id: screen,
            name: name,
            value: value,
            kind: 'lead',
            ok: function () {
                Screens.go(screen);
            }
        };
    }

    Screens.add('home', {
        layout: 'page',
        title: function () {
            return 'Channels';
        },
        hints: function () {
            return [['Arrows', 'choose'], ['OK', 'watch']];
        },
        rows: function () {
            return Channels.all.map(channelRow).concat([
                leadRow('recordings', 'Recordings', Recordings.all().length),
                leadRow('settings', 'Settings'),
                leadRow('about', 'About the box')
            ]);
        }
    });
}());
