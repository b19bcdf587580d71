// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

/// Where the HTML5 local storage of pages is kept, once a page has switched it on.
const char localStorageDirectory[] = "/home/user/config/html5localstorage";
