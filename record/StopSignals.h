#pragma once

// SIGINT and SIGTERM end a recording with what is known.

namespace record {

/// From now on SIGINT and SIGTERM only ask to stop.
void stopOnSignals();

/// Whether the recorder was asked to stop.
bool isStopped();

/// Readable once it was.
int stopDescriptor();

} // namespace record
