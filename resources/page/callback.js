// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

// Runs in each new page once it has StbMedia. Events look for the page's function at eventCallback.
StbMedia.SetEventCallback = function(fun) {StbMedia.eventCallback = fun;};
