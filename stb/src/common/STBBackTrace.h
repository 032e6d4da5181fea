#pragma once

#include <cstdio>

#include <unwind.h>

/// Prints the calling thread's stack, one line per frame, with the names that the dynamic linker
/// knows: a program must export its symbols to see its own functions. Keeps no state and takes no
/// lock, so that a report can be written whatever locks the failing thread holds.
class STBBackTrace {
  public:
    /// A callback for _Unwind_Backtrace(); `stream` is the FILE* to write to.
    static _Unwind_Reason_Code backtrace_helper(_Unwind_Context* context, void* stream);

    /// Writes the line of one frame and flushes the stream.
    static void printFrame(FILE* stream, void* address);

    /// Writes every frame of the caller.
    static void print(FILE* stream);
};
