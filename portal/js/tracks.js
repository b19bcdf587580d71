// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// The sound and subtitle tracks of what the player plays.
var Tracks = (function () {
    'use strict';

    var languages = {
        eng: 'English', ger: 'German', deu: 'German', fre: 'French', fra: 'French', ita: 'Italian', mul: 'No words',
        rus: 'Russian', spa: 'Spanish'
    };

    // A player that does not exist has an error to tell, and no tracks. The box's own lists are not quite arrays: a copy
    // is.
    function listOf(answer) {
        return answer instanceof Array ? answer.slice() : [];
    }

    function audio() {
        return Player.isActive() ? listOf(StbMedia.GetAudioTrackList(Player.id())) : [];
    }

    function subtitles() {
        return Player.isActive() ? listOf(StbMedia.GetSubtitleTrackList(Player.id())) : [];
    }

    // The description begins with the language, if the stream tells it: "eng, aac, 2 ch".
    function nameOf(track) {
        var first = track.descr.split(',')[0];
        return languages[first] || track.descr || 'Track ' + track.id;
    }

    // -1 if there is none.
    function chosenAudio() {
        return Player.isActive() ? StbMedia.GetAudioPid(Player.id()) : -1;
    }

    // -1 while subtitles are off.
    function chosenSubtitles() {
        var isOn = Player.isActive() && StbMedia.IsSubtitlesVisible(Player.id()) === 1;
        return isOn ? StbMedia.GetSubtitlePid(Player.id()) : -1;
    }

    function chooseAudio(track) {
        StbMedia.SetAudioPid(Player.id(), track);
    }

    function chooseSubtitles(track) {
        if (track >= 0)
            StbMedia.SetSubtitlePid(Player.id(), track);
        StbMedia.SetSubtitlesVisible(Player.id(), track >= 0 ? 1 : 0);
    }

    function nameIn(list, id) {
        return list.filter(function (track) {
            return track.id === id;
        }).map(nameOf)[0];
    }

    // Says what is heard and read, such as "Sound: English · Subtitles: German".
    function summary() {
        var sound = nameIn(audio(), chosenAudio());
        var text = nameIn(subtitles(), chosenSubtitles());
        return [sound && 'Sound: ' + sound, text && 'Subtitles: ' + text].filter(Boolean).join('  \u00b7  ');
    }

    return {
        audio: audio, subtitles: subtitles, nameOf: nameOf, chosenAudio: chosenAudio,
        chosenSubtitles: chosenSubtitles, chooseAudio: chooseAudio, chooseSubtitles: chooseSubtitles, summary: summary
    };
}());
