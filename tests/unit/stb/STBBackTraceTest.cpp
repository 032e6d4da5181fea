#include "stb/src/common/NSRegExp.h"
#include "stb/src/common/STBBackTrace.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include <dlfcn.h>

extern "C" __attribute__((noinline)) void functionKnownToTheLinker(FILE* stream) {
    STBBackTrace::print(stream);
    std::fputc('.', stream);
}

// A compiler may leave such a function out of the unwinder's tables, and then the trace ends there.
extern "C" __attribute__((noinline)) void functionThatCannotThrow(FILE* stream) noexcept {
    functionKnownToTheLinker(stream);
    std::fputc('.', stream);
}

extern "C" __attribute__((noinline)) void callerOfOneThatCannotThrow(FILE* stream) {
    functionThatCannotThrow(stream);
    std::fputc('.', stream);
}

namespace {

std::string written(const std::function<void(FILE*)>& body) {
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const stream = open_memstream(&text, &size);
    body(stream);
    std::fclose(stream);
    std::string result(text, size);
    std::free(text);
    return result;
}

std::string frameOf(void* address) {
    return written([address](FILE* stream) { STBBackTrace::printFrame(stream, address); });
}

std::string format(const char* text, ...) __attribute__((format(printf, 1, 2)));

std::string format(const char* text, ...) {
    char buffer[512] = "";
    va_list arguments;
    va_start(arguments, text);
    std::vsnprintf(buffer, sizeof buffer, text, arguments);
    va_end(arguments);
    return buffer;
}

char* knownFunction() {
    return reinterpret_cast<char*>(&functionKnownToTheLinker);
}

Dl_info knownObject() {
    Dl_info info{};
    dladdr(knownFunction(), &info);
    return info;
}

}  // namespace

TEST(STBBackTraceTest, AddressZeroIsUnknown) {
    EXPECT_EQ(frameOf(nullptr), "Unknown address\n");
}

TEST(STBBackTraceTest, AnAddressOutsideEveryObjectCannotBeResolved) {
    int onTheStack = 0;
    EXPECT_EQ(frameOf(&onTheStack),
              format("%p - error resolving address\n", static_cast<void*>(&onTheStack)));
}

TEST(STBBackTraceTest, AnAddressBeforeEverySymbolHasNoMatchingSymbol) {
    // The object's own header lies in the object but in no symbol.
    void* const header = static_cast<char*>(knownObject().dli_fbase) + 8;
    EXPECT_EQ(frameOf(header), format("%p - no matching symbol\n", header));
}

TEST(STBBackTraceTest, AKnownAddressShowsSymbolDistanceAndObject) {
    const Dl_info object = knownObject();
    void* const inside = knownFunction() + 10;
    EXPECT_EQ(frameOf(inside), format("%p functionKnownToTheLinker (+0xa) (%s at %p) \n", inside,
                                      object.dli_fname, object.dli_fbase));
}

TEST(STBBackTraceTest, EachFrameIsOneLineWithAnEvenAddress) {
    const std::string trace = written(&functionKnownToTheLinker);
    // Some start routines mark the end of the stack by a frame at address 0.
    const NSRegExp frames("^(0x[0-9a-f]*[02468ace] [^\n]*\n|Unknown address\n)+\\.$");
    EXPECT_TRUE(frames.match(trace)) << trace;
    EXPECT_NE(trace.find(" functionKnownToTheLinker (+0x"), std::string::npos) << trace;
}

TEST(STBBackTraceTest, TheTraceReachesTheCallersOfFunctionsThatCannotThrow) {
    const std::string trace = written(&callerOfOneThatCannotThrow);
    EXPECT_NE(trace.find(" functionThatCannotThrow (+0x"), std::string::npos) << trace;
    EXPECT_NE(trace.find(" callerOfOneThatCannotThrow (+0x"), std::string::npos) << trace;
}
