#pragma once

namespace tarn {

// Control by exceptions. None of these is an error of the library: each ends just so much of the work as cannot go on, and
// unwinds through what was opened for it. They share no base, so that each is caught only where it is named:
//
//     exception              says that                        ends                     is caught by
//     JavaExceptionPending   Java holds an exception          the native call          runEntry, which returns to Java
//     NoInstance             Java lacks what an instance or   that instance, or that   makeInLocalFrame, runProviderEntry:
//                            a log line cannot do without     line                     null; logInFrame: no line
//     NoLocalRoom            no room for local references     the walk over adapters   HbaCacheImpl::FillCache: null
//     NativeError            the host does not tell what was  the gathering of the     runThrowingEntry: a RuntimeException;
//     (native/JavaError.h)   asked for                        facts asked for          two entries: a log line
//     InventoryError         the same                         the same                 runInventoryEntry: a RuntimeException
//     (inventory/)
//
// JavaExceptionPending is also caught by what tells of a failure and has none of its own (throwOutOfMemory, ThrowJavaError,
// logInFrame) and by enumerateDisks, which prints Java's exception; where it is thrown on, it is only kept from a
// catch (...). What else is thrown is a lack of memory.

/// The virtual machine holds a pending Java exception.
class JavaExceptionPending {};

/// Something that Java had to provide for an instance is null, so the instance cannot be made.
class NoInstance {};

/// Room for local references is refused. Java may hold an exception that says so.
class NoLocalRoom {};

} // namespace tarn
