#pragma once

#include <string>

// A Fibre Channel fabric of any size, as JSON text, and the texts in it.

namespace bench {

struct Fabric {
    int adapters;
    int ports;       // of each adapter
    int remotePorts; // that each port has discovered
    int luns;        // of each remote port

    double instances() const {
        return adapters * (1.0 + ports * (2.0 + remotePorts * (1.0 + luns)));
    }
};

inline constexpr const char *nodeName = "200000e08b010203";
inline constexpr const char *portName = "210000e08b010203";
inline constexpr const char *fabricName = "1000006069c01020";
inline constexpr const char *symbolicName = "Port of a remote array, controller 1";
inline constexpr const char *portDevice = "/dev/cfg/c2";

std::string remotePortName(int remotePort);

/// The member "hba" of a description.
std::string hbaOf(const Fabric &fabric);

} // namespace bench
