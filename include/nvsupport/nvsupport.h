/*
 * nvsupport: the support library of a desktop map application.
 *
 * A host loads one module (nvsupport.so, nvsupport.dll) and calls it through the ten functions below. They look
 * after the user's online account, search the map shop and move files over the web. This header is C11 and C++.
 *
 * Threads: the three web file functions may be called on any thread, several at a time. The results of a search are
 * read and closed on the thread that holds their handle. Everything else is called on the host's user interface thread,
 * one call at a time. Every call blocks until it is done; the library has no main loop and no queue of its own.
 * Calls within calls: a transfer's callback, and the host's timers and events that run while a dialog is open, may call
 * every function that its thread may. Neither may leave the call by an exception, longjmp or the end of its thread.
 * Errors: no function raises an exception or ends the process. Failures are results, as described at each function; the
 * environment variable NV_TRACE makes the library write the reasons to standard error.
 * Texts: zero-terminated bytes in the host's code page (UTF-8 on Linux normally). Arguments are read during the
 * call only. What a function returns by pointer stays the library's. Null stands for the empty text.
 * Files: on Linux both / and \ separate folders in the names of products and files.
 * Waiting, on Linux: 60 s for the head of a reply, connecting and redirects included, and then 60 s for each further
 * stretch of it. An exchange with a service ends after 120 s or 64 MiB; a transfer of a file has no limit but the
 * callback. On Windows the time-outs are the system's.
 * End: no call may run, on any thread, when the module is unloaded. A process may end without unloading, on any thread
 * and while calls are under way on others: then nothing is torn down, and no list of missing translations is written.
 * Where none is under way, one that begins later fails.
 */
#ifndef NVSUPPORT_NVSUPPORT_H
#define NVSUPPORT_NVSUPPORT_H

#include <stdbool.h>
#include <stdint.h>

#if defined(_WIN32) && defined(NVSUPPORT_BUILD)
#define NVSUPPORT_API __declspec(dllexport)
#elif defined(NVSUPPORT_BUILD)
#define NVSUPPORT_API __attribute__((visibility("default")))
#else
#define NVSUPPORT_API
#endif

/* The version of this header. A module tells its own by `strings nvsupport.so | grep '^nvsupport [0-9]'`. */
#define NVSUPPORT_VERSION_MAJOR 1
#define NVSUPPORT_VERSION_MINOR 0
#define NVSUPPORT_VERSION_PATCH 0
#define NVSUPPORT_VERSION \
  NVSUPPORT_VERSION_TEXT(NVSUPPORT_VERSION_MAJOR, NVSUPPORT_VERSION_MINOR, NVSUPPORT_VERSION_PATCH) /* "1.0.0" */
#define NVSUPPORT_VERSION_TEXT(major, minor, patch) NVSUPPORT_VERSION_JOIN(major, minor, patch)
#define NVSUPPORT_VERSION_JOIN(major, minor, patch) #major "." #minor "." #patch

#ifdef __cplusplus
extern "C" {
#endif

/*
 * A window of the host that owns a dialog: an HWND on Windows, an X11 window id on Linux, both cast to a pointer.
 * Null is allowed: the dialog then has no owner, as in a Wayland host.
 */
typedef void* NVWindow;

/* ---- Session ------------------------------------------------------------------------------------------------- */

/*
 * Opens the session of a product and closes the one before, if any. Reads the user ID and password that were saved
 * for the product; shows nothing and contacts nothing. Call it once after loading the module and before
 * x0d83f18d, x2ed7465a and xff99a5e4, and again at any time to change to another product: the new session is in force
 * when it returns, and what an open dialog began is done with the session that it began with.
 *
 * product: name of the product, used as it stands in the name of the folder that keeps its settings. A separator in it
 *          makes a folder below another one.
 */
NVSUPPORT_API void x3e491215(const char* product);

/*
 * Returns the user ID of the session, an empty text if there is none; never null. The text belongs to the session and
 * is valid until the user ID changes, which an open dialog can do at any time, or the session is replaced: copy it.
 */
NVSUPPORT_API const char* x0d83f18d(void);

/*
 * Returns the device identifier: a number that stands for this computer, the same on every run and for every
 * product. 0 while there is no session.
 */
NVSUPPORT_API uint32_t x2ed7465a(void);

/*
 * Gets a session token for the signed-in user from the account service. If no password is known, the sign-in
 * dialog runs first, from which the user can also create an account. Needs a session.
 *
 * Blocks for as long as a dialog is open, without limit; while it is, events of the host run in the middle of the
 * call. Meanwhile the host's Qt 6 windows, or on Windows the window `parent`, take no input; others do, unless the host
 * prevents it. Each exchange with the service blocks as described above, and no event runs.
 *
 * parent: owner of the dialogs, or null.
 * token:  buffer of 20 bytes, not null; receives the token (at most 19 characters) and its terminator. It receives
 *         an empty text when there is no token.
 * Returns true if a token was written; false if the user cancelled, the service refused, could not be reached or
 * sent a token that does not fit. False at once without a session, without a display for a dialog that is needed, and
 * within another call of this function.
 */
NVSUPPORT_API bool xff99a5e4(NVWindow parent, char* token);

/* ---- Map shop ------------------------------------------------------------------------------------------------ */

/* A point of the area to search, 16 bytes. */
typedef struct MapShopPoint {
  double latitude;  /* degrees, -90 to 90 inclusive */
  double longitude; /* degrees, -400 to 400 inclusive */
} MapShopPoint;

/*
 * A product on offer, 1308 bytes. All texts are terminated, and what stands behind a terminator is 0. A text that does
 * not fit is cut to its field, at the end of a character; but a package's title, which keeps 190 bytes behind its mark,
 * is cut there even within one.
 */
typedef struct MapShopItem {
  int32_t firstValue;       /* meaning agreed between host and service */
  char title[200];          /* display title; begins with "Package: " for a package */
  char shortText[100];      /* meaning agreed between host and service */
  char fileReference[1000]; /* name or location of the product's file */
  int32_t secondValue;      /* meaning agreed between host and service */
} MapShopItem;

/* The results of one search. Owned by the host from NSMapShopSearch to NSMapShopClose. */
typedef struct MapShopResults* NVMapShopHandle;

/*
 * Asks the map shop service which products are on offer for an area. Blocks for the whole exchange, as described above;
 * the host cannot end it, and none of its events run.
 *
 * points: `count` points, read during the call; may be null if count is 0.
 * count:  number of points, 0 to 134,217,727.
 * Returns a handle for NSMapShopGetNext and NSMapShopClose. A search that fails (a point out of range, service out
 * of reach, a broken reply, one that is too long or has more than 1,000,000 items) gives a handle with no items or with
 * those that came before the failure. Null only when memory ran out; the other two functions take that null.
 */
NVSUPPORT_API NVMapShopHandle NSMapShopSearch(const MapShopPoint* points, int32_t count);

/*
 * Copies the next product into `item` (1308 bytes, owned by the host), in the order of the service's reply.
 * Returns true if a record was copied; false at the end of the results, with `item` untouched. Does not block.
 */
NVSUPPORT_API bool NSMapShopGetNext(NVMapShopHandle handle, MapShopItem* item);

/*
 * Frees the results; the handle is dead afterwards. Returns the closing value of the service's reply, 0 if it was
 * not read. Does not block.
 */
NVSUPPORT_API int32_t NSMapShopClose(NVMapShopHandle handle);

/* ---- Web files ----------------------------------------------------------------------------------------------- */

/*
 * What the three functions below have in common.
 *
 * host: name or address of the web server; IPv6 in brackets. Nothing else: with a port, a scheme, a user, a blank or a
 *       control character in it the call fails, as with an empty name. The port is 80, and TLS is not used.
 * path: path on the server, as the server expects it, with a query if need be; a / is put in front if there is none.
 *       On Linux blanks and # are sent escaped (%20, %23), and so are bytes from 0x80 up in front of the first ? (as
 *       %e9); everything else goes as it stands. A control character makes the call fail.
 *
 * Redirects are not followed. The host ends a transfer by its callback, which is asked only when bytes have come.
 */

/* Progress of a download, 16 bytes. Owned by the host, written on the calling thread between two callbacks. */
typedef struct WebProgressCounters {
  uint64_t done; /* bytes taken so far; the file on disk can be behind until the end */
  int64_t total; /* bytes to expect; -1 when the server did not tell */
} WebProgressCounters;

/*
 * The host's function that a transfer calls between chunks, on the calling thread, with the host's own pointer.
 * Returns true to go on, false to stop the transfer.
 */
typedef bool (*WebProgressCallback)(void* callbackData);

/*
 * Downloads a file by HTTP GET into a local file. The body goes to `file` with ".TMP" appended, which no other download
 * can write at the same time, and is renamed at the end.
 *
 * file:         local file name, not null. An earlier file of that name is deleted when the head of a reply with a
 *               status below 300 has come. A folder, pipe or device in its place, or a name that leaves no room for
 *               ".TMP", makes the call fail before anything is transferred.
 * callback:     called after every read, before the chunk is written, and once more at the end of the body; may be
 *               null. When it returns false, the download fails: neither an old nor a new file is left.
 * callbackData: handed to `callback`.
 * counters:     set when the body begins and kept up to date; untouched if it never begins; may be null.
 * Returns true when the body has ended and `file` holds it. It is complete only if counters.done equals counters.total,
 * where that is known: a server that closes early reads as the end.
 * False on every failure: no connection, a status of 300 or more (the earlier file is untouched in these two cases), a
 * file that cannot be written, a stop by the callback, a transfer that breaks off.
 */
NVSUPPORT_API bool NSDownloadWebFileProgress(const char* host, const char* path, const char* file,
                                             WebProgressCallback callback, void* callbackData,
                                             WebProgressCounters* counters);

/* As NSDownloadWebFileProgress, without counters: a file that ended early cannot be distinguished from a complete one.
 */
NVSUPPORT_API bool x77fc64c7(const char* host, const char* path, const char* file, WebProgressCallback callback,
                             void* callbackData);

/*
 * Reads a stretch of a file on a web server into memory by HTTP GET with a Range header.
 *
 * offset:   first byte, counted from 0.
 * length:   number of bytes.
 * buffer:   at least `length` bytes, owned by the host; never written beyond them.
 * callback: called after every read that brought bytes; may be null. False stops the transfer.
 * Returns `length` when all bytes arrived; 0 when the transfer did not complete (bytes that arrived before stay in
 * the buffer); -1 when there is no body to read (no connection, a status of 300 or more, a reply with status 206 that
 * says that it brings another range, or several).
 * A length of 0 or less sends a request for an empty range and gives 0, or -1 when the server refuses it.
 * A server that ignores ranges answers with the file from its start; that is not noticed.
 */
NVSUPPORT_API int32_t xfa704a3f(const char* host, const char* path, int64_t offset, int32_t length, void* buffer,
                                WebProgressCallback callback, void* callbackData);

/* ---- Function types ------------------------------------------------------------------------------------------- */

/*
 * Pointers to the ten functions, in the order of this header, for a host that finds them by name (dlsym,
 * GetProcAddress). nvsupport_module.h finds all of them at once.
 */
typedef void (*NVOpenSessionFunction)(const char* product);           /* x3e491215 */
typedef const char* (*NVUserIdFunction)(void);                        /* x0d83f18d */
typedef uint32_t (*NVDeviceIdFunction)(void);                         /* x2ed7465a */
typedef bool (*NVSessionTokenFunction)(NVWindow parent, char* token); /* xff99a5e4 */
typedef NVMapShopHandle (*NVMapShopSearchFunction)(const MapShopPoint* points, int32_t count);
typedef bool (*NVMapShopGetNextFunction)(NVMapShopHandle handle, MapShopItem* item);
typedef int32_t (*NVMapShopCloseFunction)(NVMapShopHandle handle);
typedef bool (*NVDownloadWebFileProgressFunction)(const char* host, const char* path, const char* file,
                                                  WebProgressCallback callback, void* callbackData,
                                                  WebProgressCounters* counters);
typedef bool (*NVDownloadWebFileFunction)(const char* host, const char* path, const char* file,
                                          WebProgressCallback callback, void* callbackData); /* x77fc64c7 */
typedef int32_t (*NVReadWebFileFunction)(const char* host, const char* path, int64_t offset, int32_t length,
                                         void* buffer, WebProgressCallback callback,
                                         void* callbackData); /* xfa704a3f */

#ifdef __cplusplus
}
#endif

#endif
