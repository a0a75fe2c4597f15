/*
 * nvsupport: the support library of a desktop map application.
 *
 * A host loads one module (nvsupport.so, nvsupport.dll) and calls it through the ten functions below. They look
 * after the user's online account, search the map shop and move files over the web. This header is C11 and C++.
 *
 * Threads: call every function from the host's user interface thread, one call at a time. Calls that reach the
 * network or open a dialog block until they are done; the library has no main loop and no queue of its own.
 * Errors: no function raises an exception or ends the process. Failures are results, as told at each function.
 * Texts: zero-terminated bytes in the host's code page (UTF-8 on Linux normally). Arguments are read during the
 * call only. What a function returns by pointer stays the library's.
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
 * Null is allowed: the dialog then has no owner.
 */
typedef void* NVWindow;

/* ---- Session ------------------------------------------------------------------------------------------------- */

/*
 * Opens the session of a product and closes the one before, if any. Reads the user ID and password that were saved
 * for the product; shows nothing and contacts nothing. Call it once after loading the module and before
 * x0d83f18d, x2ed7465a and xff99a5e4, and again at any time to change to another product.
 *
 * product: name of the product, used as it stands in the name of the folder that keeps its settings; not null.
 */
NVSUPPORT_API void x3e491215(const char* product);

/*
 * Returns the user ID of the session, an empty text if there is none; never null once x3e491215 was called.
 * The text belongs to the session and is valid until the user ID changes (a dialog) or the session is replaced.
 */
NVSUPPORT_API const char* x0d83f18d(void);

/*
 * Returns the device identifier: a number that stands for this computer, the same on every run and for every
 * product. Needs a session.
 */
NVSUPPORT_API uint32_t x2ed7465a(void);

/*
 * Gets a session token for the signed-in user from the account service. If no password is known, the sign-in
 * dialog runs first, from which the user can also create an account. Needs a session.
 *
 * parent: owner of the dialogs, or null.
 * token:  buffer of 20 bytes, not null; receives the token (at most 19 characters) and its terminator. It receives
 *         an empty text when there is no token.
 * Returns true if a token was written; false if the user cancelled, the service refused, could not be reached or
 * sent a token that does not fit.
 */
NVSUPPORT_API bool xff99a5e4(NVWindow parent, char* token);

/* ---- Map shop ------------------------------------------------------------------------------------------------ */

/* A point of the area to search, 16 bytes. */
typedef struct MapShopPoint {
  double latitude;  /* degrees, -90 to 90 inclusive */
  double longitude; /* degrees, -400 to 400 inclusive */
} MapShopPoint;

/* A product on offer, 1308 bytes. All texts are terminated; bytes behind a terminator carry no meaning. */
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
 * Asks the map shop service which products are on offer for an area. Blocks for the whole exchange.
 *
 * points: `count` points, read during the call; may be null if count is 0.
 * count:  number of points, 0 or more.
 * Returns a handle for NSMapShopGetNext and NSMapShopClose. A search that fails (a point out of range, service out
 * of reach, a broken reply) gives a handle with no items or with those that came before the failure. Null only when
 * memory ran out; the other two functions take that null.
 */
NVSUPPORT_API NVMapShopHandle NSMapShopSearch(const MapShopPoint* points, int32_t count);

/*
 * Copies the next product into `item` (1308 bytes, owned by the host), in the order of the service's reply.
 * Returns true if a record was copied; false at the end of the results, with `item` untouched.
 */
NVSUPPORT_API bool NSMapShopGetNext(NVMapShopHandle handle, MapShopItem* item);

/*
 * Frees the results; the handle is dead afterwards. Returns the closing value of the service's reply, 0 if it was
 * not read.
 */
NVSUPPORT_API int32_t NSMapShopClose(NVMapShopHandle handle);

/* ---- Web files ----------------------------------------------------------------------------------------------- */

/* Progress of a download, 16 bytes. Owned by the host, written on the calling thread between two callbacks. */
typedef struct WebProgressCounters {
  uint64_t done; /* bytes written so far */
  int64_t total; /* bytes to expect; -1 when the server did not tell */
} WebProgressCounters;

/*
 * The host's function that a transfer calls between chunks, on the calling thread, with the host's own pointer.
 * Returns true to go on, false to stop the transfer. It must not raise an exception.
 */
typedef bool (*WebProgressCallback)(void* callbackData);

/*
 * Downloads a file by HTTP GET into a local file. The body goes to `file` with ".TMP" appended and is renamed at
 * the end, so `file` never holds a part of the body.
 *
 * host:         name of the web server; the port is 80.
 * path:         path on the server, as the server expects it. Redirects are not followed.
 * file:         local file name. An earlier file of that name is deleted when the body begins to arrive.
 * callback:     called after every read, before the chunk is written, and once more at the end of the body; may be
 *               null. When it returns false, the download fails: neither an old nor a new file is left.
 * callbackData: handed to `callback`.
 * counters:     kept up to date during the transfer; may be null.
 * Returns true when `file` holds the whole body; false on every failure: no connection, a status of 300 or more
 * (the earlier file is untouched in these two cases), a file that cannot be written, a stop by the callback.
 */
NVSUPPORT_API bool NSDownloadWebFileProgress(const char* host, const char* path, const char* file,
                                             WebProgressCallback callback, void* callbackData,
                                             WebProgressCounters* counters);

/* As NSDownloadWebFileProgress, without counters. */
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
 * the buffer) or `length` is 0 or less; -1 when there is no body to read (no connection, a status of 300 or more).
 * A server that ignores ranges answers with the file from its start; that is not told apart.
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
