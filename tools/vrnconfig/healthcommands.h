#ifndef VRNCONFIG_HEALTHCOMMANDS_H
#define VRNCONFIG_HEALTHCOMMANDS_H

#include <functional>

class Bus;
class VrnConfigCli;

/// `monitor --health`: each node's figures from the traffic on the line,
/// redrawn every second, until `duration` seconds passed (< 0: Ctrl-C).
void monitorHealth(VrnConfigCli& cli, double duration);

/// Ends the command with exit code 1 and a clear error when `bus` closes
/// under it (a serial port unplugged, a pseudo-terminal gone); `before` runs
/// first.
void failWhenBusGoes(VrnConfigCli& cli, Bus* bus, std::function<void()> before = {});

#endif // VRNCONFIG_HEALTHCOMMANDS_H
