#include "overseer/browser_locations.h"

namespace overseer {

namespace {

using enum Place;
using enum scourel::protocol::BrowserCategory;

// Chrome, Edge, Brave, Vivaldi, Chromium and Opera: the layout of current
// releases, and the older names still found in profiles they upgraded.
// What sites and extensions share with no way to tell them apart (service
// workers' registrations and scripts, File System, storage buckets) has no
// row; IndexedDB is named site by site.
constexpr LocationRow kChromiumRows[] = {
    {L"Cache", true, kCacheFolder, kCache},                        // the HTTP disk cache
    {L"Code Cache", true, kCacheFolder, kCache},                   // compiled scripts and WebAssembly
    {L"GPUCache", true, kCacheFolder, kCache},                     // compiled shaders
    {L"DawnCache", true, kCacheFolder, kCache},                    // WebGPU shaders
    {L"DawnGraphiteCache", true, kCacheFolder, kCache},            // WebGPU shaders, Graphite backend
    {L"DawnWebGPUCache", true, kCacheFolder, kCache},              // WebGPU pipelines
    {L"Media Cache", true, kCacheFolder, kCache},                  // media of older releases
    {L"Application Cache", true, kCacheFolder, kCache},            // sites' offline copies, older releases
    {L"Service Worker\\CacheStorage", true, kCacheFolder, kCache}, // sites' Cache API storage
    {L"Network\\Cookies", false, kData, kCookies},                 // cookies
    {L"Network\\Cookies-journal", false, kData, kCookies},         // their write-ahead journal
    {L"Cookies", false, kData, kCookies},                          // cookies, before the "Network" folder
    {L"Cookies-journal", false, kData, kCookies},                  // their journal
    {L"Local Storage\\leveldb", true, kData, kCookies},            // sites' localStorage
    {L"Session Storage", true, kData, kCookies},                   // sites' sessionStorage
    {L"IndexedDB\\*", true, kData, kCookies},                      // sites' IndexedDB databases, one folder each
    {L"databases", true, kData, kCookies},                         // sites' Web SQL databases
    {L"History", false, kData, kHistory},                          // visits (and downloads)
    {L"History-journal", false, kData, kHistory},                  // its journal
    {L"Archived History", false, kData, kHistory},                 // visits older than 90 days, older releases
    {L"Visited Links", false, kData, kHistory},                    // link colouring
    {L"Top Sites", false, kData, kHistory},                        // most visited pages
    {L"Top Sites-journal", false, kData, kHistory},                // its journal
    {L"Favicons", false, kData, kHistory},                         // icons of visited pages
    {L"Favicons-journal", false, kData, kHistory},                 // its journal
    {L"History Provider Cache", false, kData, kHistory},           // address bar's history index, older releases
    {L"JumpListIconsMostVisited", true, kData, kHistory},          // taskbar jump list's icons
    {L"JumpListIconsRecentClosed", true, kData, kHistory},         // taskbar jump list's icons
    {L"Login Data", false, kData, kAutocomplete},                  // saved passwords
    {L"Login Data-journal", false, kData, kAutocomplete},          // its journal
    {L"Login Data For Account", false, kData, kAutocomplete},      // passwords kept for the account
    {L"Login Data For Account-journal", false, kData, kAutocomplete},// its journal
    {L"Web Data", false, kData, kAutocomplete},                    // form entries and addresses
    {L"Web Data-journal", false, kData, kAutocomplete},            // its journal
    {L"Sessions", true, kData, kSession},                          // open tabs and windows
    {L"Current Session", false, kData, kSession},                  // open windows, older releases
    {L"Current Tabs", false, kData, kSession},                     // open tabs, older releases
    {L"Last Session", false, kData, kSession},                     // last windows, older releases
    {L"Last Tabs", false, kData, kSession},                        // last tabs, older releases
    {L"DownloadMetadata", false, kData, kDownloadHistory},         // downloads in progress
    {L"Shortcuts", false, kData, kAddressBar},                     // what was typed and picked in the address bar
    {L"Shortcuts-journal", false, kData, kAddressBar},             // its journal
    {L"Network Action Predictor", false, kData, kAddressBar},      // typed text to predicted pages
    {L"Network Action Predictor-journal", false, kData, kAddressBar},// its journal
};

// Firefox, LibreWolf and Waterfox. Bookmarks live in places.sqlite with the
// history; the browser rebuilds them from "bookmarkbackups", never named.
constexpr LocationRow kFirefoxRows[] = {
    {L"cache2", true, kCacheFolder, kCache},                       // the HTTP disk cache
    {L"startupCache", true, kCacheFolder, kCache},                 // compiled start-up code
    {L"jumpListCache", true, kCacheFolder, kCache},                // taskbar jump list's icons
    {L"shader-cache", true, kData, kCache},                        // compiled shaders
    {L"cookies.sqlite", false, kData, kCookies},                   // cookies
    {L"cookies.sqlite-wal", false, kData, kCookies},               // their write-ahead log
    {L"webappsstore.sqlite", false, kData, kCookies},              // sites' localStorage, older releases
    {L"webappsstore.sqlite-wal", false, kData, kCookies},          // its log
    {L"storage\\default\\*", true, kData, kCookies},               // sites' storage, one folder each
    {L"storage\\temporary", true, kData, kCookies},                // sites' temporary storage
    {L"OfflineCache", true, kCacheFolder, kCookies},               // sites' offline copies, older releases
    {L"places.sqlite", false, kData, kHistory},                    // visits, downloads and bookmarks
    {L"places.sqlite-wal", false, kData, kHistory},                // its log
    {L"favicons.sqlite", false, kData, kHistory},                  // icons of visited pages
    {L"favicons.sqlite-wal", false, kData, kHistory},              // its log
    {L"thumbnails", true, kCacheFolder, kHistory},                 // pictures of visited pages
    {L"formhistory.sqlite", false, kData, kAutocomplete},          // form entries and searches
    {L"logins.json", false, kData, kAutocomplete},                 // saved passwords
    {L"logins-backup.json", false, kData, kAutocomplete},          // their backup
    {L"sessionstore.jsonlz4", false, kData, kSession},             // open tabs and windows at the last exit
    {L"sessionstore-backups", true, kData, kSession},              // the running session and its backups
    {L"sessionCheckpoints.json", false, kData, kSession},          // where the last exit got to
};

}  // namespace

std::span<const LocationRow> LocationsOf(BrowserFamily family) {
  return family == BrowserFamily::kFirefox ? std::span<const LocationRow>(kFirefoxRows)
                                           : std::span<const LocationRow>(kChromiumRows);
}

}  // namespace overseer
