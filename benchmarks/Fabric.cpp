#include "benchmarks/Fabric.h"

#include <array>
#include <cstdio>

#include "benchmarks/Hosts.h"

namespace bench {
namespace {

std::string quoted(const std::string &text) {
    return "\"" + text + "\"";
}

std::string portAttributes(const std::string &name) {
    return R"("attributes": {"NodeWWN": ")" + std::string(nodeName) + R"(", "PortWWN": ")" + name +
           R"(", "PortFcId": 66048, "PortType": 5, "PortState": 2, "PortSupportedClassofService": 8,
        "PortSymbolicName": ")" +
           symbolicName + R"(", "OSDeviceName": ")" + portDevice +
           R"(", "PortSupportedSpeed": 2, "PortSpeed": 2, "PortMaxFrameSize": 2048, "FabricName": ")" + fabricName +
           "\"}";
}

} // namespace

std::string remotePortName(int remotePort) {
    std::array<char, 17> text;
    std::snprintf(text.data(), text.size(), "50060e80%08x", static_cast<unsigned>(remotePort));
    return text.data();
}

std::string hbaOf(const Fabric &fabric) {
    const auto remotePort = [](int r) { return "{" + portAttributes(remotePortName(r)) + "}"; };
    const auto port = [&](int) {
        return "{" + portAttributes(portName) + R"(, "statistics": {"TxFrames": 1}, "discovered": )" +
               listOf(fabric.remotePorts, remotePort) + "}";
    };
    const auto entry = [&](int e) { // neighbours in the table lead to different ports
        const int target = e % fabric.remotePorts;
        const std::string lun = std::to_string(e / fabric.remotePorts);
        return R"({"ScsiId": {"OSDeviceName": ")" + ("/dev/rdsk/c2t" + remotePortName(target) + "d" + lun) +
               R"(s2", "ScsiBusNumber": 2, "ScsiTargetNumber": )" + std::to_string(target) + R"(, "ScsiOSLun": )" +
               lun + R"(}, "FcpId": {"FcpLun": 281474976710656, "PortWWN": )" + quoted(remotePortName(target)) + "}}";
    };
    const auto adapter = [&](int a) {
        return R"({"name": "hba-)" + std::to_string(a) + R"(", "attributes": {"NodeWWN": )" + quoted(nodeName) +
               R"(, "Manufacturer": "text", "SerialNumber": "text", "Model": "text", "ModelDescription": "text",
            "NodeSymbolicName": "text", "HardwareVersion": "text", "DriverVersion": "text", "OptionROMVersion": "text",
            "FirmwareVersion": "text", "DriverName": "text", "VendorSpecificID": 1}, "ports": )" +
               listOf(fabric.ports, port) + R"(, "targetMapping": )" + listOf(fabric.remotePorts * fabric.luns, entry) +
               "}";
    };
    return R"("hba": {"adapters": )" + listOf(fabric.adapters, adapter) + "}";
}

} // namespace bench
