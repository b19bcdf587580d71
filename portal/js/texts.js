// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// How the portal writes times and durations.
var Texts = (function () {
    'use strict';

    function twoDigits(number) {
        return (number < 10 ? '0' : '') + number;
    }

    // A time of day, such as 09:05.
    function time(date) {
        return twoDigits(date.getHours()) + ':' + twoDigits(date.getMinutes());
    }

    // A day and a time, such as 21.11. 09:05.
    function dayAndTime(date) {
        return twoDigits(date.getDate()) + '.' + twoDigits(date.getMonth() + 1) + '. ' + time(date);
    }

    // A position in milliseconds as hours, minutes and seconds, such as 1:02:03 or 2:03.
    function position(milliseconds) {
        var seconds = Math.floor(milliseconds / 1000);
        var minutes = Math.floor(seconds / 60);
        var hours = Math.floor(minutes / 60);
        return (hours ? hours + ':' + twoDigits(minutes % 60) : minutes) + ':' + twoDigits(seconds % 60);
    }

    // A duration in seconds in words, such as 30 seconds or 5 minutes.
    function duration(seconds) {
        if (seconds < 60 || seconds % 60)
            return seconds + ' seconds';
        return seconds === 60 ? '1 minute' : seconds / 60 + ' minutes';
    }

    // Part of a file name: the letters and digits of a name, and a point of time to the second.
    function fileName(name, date) {
        return name.replace(/[^A-Za-z0-9]+/g, '-') + '-' + date.getFullYear() + twoDigits(date.getMonth() + 1)
            + twoDigits(date.getDate()) + '-' + twoDigits(date.getHours()) + twoDigits(date.getMinutes())
            + twoDigits(date.getSeconds());
    }

    return { time: time, dayAndTime: dayAndTime, position: position, duration: duration, fileName: fileName };
}());
