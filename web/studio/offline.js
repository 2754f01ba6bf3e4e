// SPDX-License-Identifier: Apache-2.0
// Keeps the page's files, so that it works without a network after the first load. The build puts the list of files here,
// and a name that changes with any of them.
const NAME = '@NAME@', FILES = ['@FILES@'];

addEventListener('install', (event) => {
    event.waitUntil(caches.open(NAME).then((cache) => cache.addAll(FILES)).then(() => self.skipWaiting()));
});
addEventListener('activate', (event) => {
    event.waitUntil(caches.keys().then((names) => Promise.all(names.filter((name) => name !== NAME).map((name) => caches.delete(name)))));
});
addEventListener('fetch', (event) => {
    if (event.request.method !== 'GET') return;
    event.respondWith(caches.match(event.request, { ignoreSearch: true, cacheName: NAME }).then((kept) => kept ?? fetch(event.request)));
});
