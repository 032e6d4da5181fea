#include "stb/src/common/STBBackTrace.h"

#include <cstddef>
#include <cstdint>

#include <dlfcn.h>

namespace {

void printSymbol(FILE* stream, void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0) {
        std::fputs(" - error resolving address", stream);
        return;
    }
    if (info.dli_saddr == nullptr) {
        std::fputs(" - no matching symbol", stream);
        return;
    }
    const std::ptrdiff_t offset =
        static_cast<const char*>(address) - static_cast<const char*>(info.dli_saddr);
    std::fprintf(stream, " %s (+0x%x) (%s at %p) ", info.dli_sname, static_cast<unsigned>(offset),
                 info.dli_fname, info.dli_fbase);
}

}  // namespace

_Unwind_Reason_Code STBBackTrace::backtrace_helper(_Unwind_Context* context, void* stream) {
    // On ARM the lowest bit of a code address selects the Thumb instruction set.
    constexpr auto kInstructionSetBit = static_cast<std::uintptr_t>(1);
    const auto address = static_cast<std::uintptr_t>(_Unwind_GetIP(context)) & ~kInstructionSetBit;
    // The unwinder gives addresses as integers only.
    auto* const code = reinterpret_cast<void*>(address);  // NOLINT(performance-no-int-to-ptr)
    printFrame(static_cast<FILE*>(stream), code);
    return _URC_NO_REASON;
}

void STBBackTrace::printFrame(FILE* stream, void* address) {
    if (address == nullptr) {
        std::fputs("Unknown address", stream);
    } else {
        std::fprintf(stream, "%p", address);
        printSymbol(stream, address);
    }
    std::fputc('\n', stream);
    std::fflush(stream);
}

void STBBackTrace::print(FILE* stream) {
    _Unwind_Backtrace(&backtrace_helper, stream);
}
