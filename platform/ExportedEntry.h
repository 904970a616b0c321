#pragma once

/// Stands before the definition of every native method. Everything else is compiled with hidden visibility, and some
/// virtual machines' JNIEXPORT says nothing of visibility: then the library would load, and have no method at all.
#define TARN_EXPORTED_ENTRY extern "C" __attribute__((visibility("default")))
