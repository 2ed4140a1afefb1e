#pragma once

/**
 * The chip layer: every function that the service calls in the two chip-layer libraries.
 *
 * These headers declare, they implement nothing: the executable, and each test, links or loads a library that
 * does. What holds for every function unless its own comment says otherwise:
 *
 * - C++ linkage, global namespace. The parameter types are part of the symbol's name: a library is built from
 *   these headers or matches them exactly.
 * - The result is a status: 0 success; anything else is the library's own and reaches the client unchanged.
 *   A library should keep clear of -1, -2, -4 and -5: by them the service reports failures of its own
 *   (general failure, bad argument, no memory, library not ready), and a client can not tell the two apart.
 * - Called on up to 10 threads at once, the same function and the same arguments included.
 *   The service takes no lock around a call: serialising access to the hardware is the library's part.
 * - Texts in are NUL-terminated, never null, of any bytes, lent for the duration of the call. Buffers out are
 *   the caller's, of the stated size; the library never writes beyond it, and terminates texts within it.
 * - No exception leaves a function. A call is synchronous; what takes long is reported by an event.
 */

#include "chiplayer/aud.h"
#include "chiplayer/common.h"
#include "chiplayer/custom.h"
#include "chiplayer/disp.h"
#include "chiplayer/disptst.h"
#include "chiplayer/info.h"
#include "chiplayer/inpsrc.h"
#include "chiplayer/net.h"
#include "chiplayer/prphrl.h"
#include "chiplayer/sys.h"
#include "chiplayer/types.h"
