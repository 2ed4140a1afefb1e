#pragma once

namespace bench {

// The object of bench-dbus-server.
constexpr char kDbusPath[] = "/zvttv/bench/Probe";
constexpr char kDbusInterface[] = "zvttv.bench.Probe";
constexpr char kDbusMethod[] = "isOdd";

}  // namespace bench
