#pragma once

// What the probe inside a service and the tool outside agree on.
//
// The probe appends lines to a file, each in one write before anything else is done, so that what a process
// was at when it died is there to be read. Words are separated by tabs:
//
//     function NAME MANGLED HEADER LIBRARY        when it is loaded, for each function of the chip layer;
//     LIBRARY is
//                                                 the file that has it, "-" if none has
//     call THREAD NAME                            the service calls the function
//     done THREAD NAME STATUS NANOSECONDS         it has come back
//     fault NAME TEXT                             the function has broken its word
//     event MODULE TYPE                           the module has raised an event
//     end THREAD                                  the thread ends the process by a signal
//     order LETTER                                an order has been carried out
namespace check {

/** Names the file. Without it the probe is only in the way: it passes everything on. */
inline constexpr char kReportVariable[] = "ZVTTV_CHECK_REPORT";

/**
 * Where the probe reads orders, a letter each. At its end, when the tool is gone, the service ends: it
 * belongs to nobody else.
 */
inline constexpr int kOrders = 100;

/** No order, but carried out all the same: the service waits ahead of the first module's start. */
inline constexpr char kWaits = 'w';
/** From now on the probe answers that the library is not ready. */
inline constexpr char kNotReady = 'n';
/** From now on the library answers for itself, as it did at the beginning. */
inline constexpr char kOwnReadiness = 'r';
/** The service, which waits ahead of the first module's start, goes on. */
inline constexpr char kStart = 's';
/** From now on the library is asked something while its first events are handled, to find a lock held. */
inline constexpr char kAskDuringEvents = 'l';
/** What it is that is then found. It costs seconds, each time. */
inline constexpr char kLockHeld[] =
        "has its handler called with a lock held that functions of the module take";
/** The modules are shut down, looked after, and started again. */
inline constexpr char kRestart = 'x';

}  // namespace check
