#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "description/Host.h"
#include "platform/replay/FileTree.h"

namespace replay {

/// One host as a description says it is, with the files that follow from it. Never changed once it is loaded, so that
/// any number of threads may read it.
struct Host : description::Host {
    Host() : Host(description::Host()) {
    }
    explicit Host(description::Host read);
    Host(const Host &) = delete; // `files` points into it
    Host &operator=(const Host &) = delete;

    FileTree files;
    std::string mountTableText;
};

/// The errno with which the call fails on this disk, on a descriptor of these open flags; 0 when it does not. Returns
/// when the call is to answer.
int failureOf(const Disk &disk, std::string_view call);
int failureOf(const Disk &disk, std::string_view call, int openFlags);

/// The host that calls are answered from: the one that was made so last; until one is, that of TARN_HOST or the built-in
/// one.
std::shared_ptr<const Host> currentHost();
void makeCurrent(std::shared_ptr<const Host> loaded);

} // namespace replay
