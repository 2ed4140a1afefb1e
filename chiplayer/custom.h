#pragma once

// The custom library: what a television maker adds to the chip layer. A library of its own, called from the
// main thread while the service starts.

/**
 * The custom library's own initialisation, called once, after every interface has been registered: clients
 * may already be calling the chip layer on other threads. The result is not examined.
 */
int _a_zvttvfapi_custom_init();

/**
 * The debug level of the service's log, asked once, before anything else of either library is called. Only
 * the low 8 bits count: zero keeps the service's log empty.
 */
int _a_zvttvfapi_custom_init_debug_level();

/**
 * What the libraries take from their environment, for people: whole lines, each indented by two blanks, that
 * last as long as the process. Asked, in place of everything else, by a service that is started for its help.
 * A library may lack it.
 */
[[gnu::weak]] const char* _a_zvttvfapi_custom_help();
