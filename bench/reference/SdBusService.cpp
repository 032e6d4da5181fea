#include <systemd/sd-bus.h>

#include <cstdint>
#include <cstdlib>

namespace {

int getValue(sd_bus_message* call, void*, sd_bus_error*) {
    const char* address = nullptr;
    const int result = sd_bus_message_read(call, "s", &address);
    return result < 0 ? result : sd_bus_reply_method_return(call, "s", "KELM");
}

const sd_bus_vtable kTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("get_value", "s", "s", getValue, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

int serve(sd_bus* bus) {
    while (true) {
        const int handled = sd_bus_process(bus, nullptr);
        if (handled < 0) return handled;
        if (handled > 0) continue;
        const int result = sd_bus_wait(bus, UINT64_MAX);
        if (result < 0) return result;
    }
}

}  // namespace

// trd-reference-sdbus BUS_NAME: get_value with a constant answer, without libdbus or a binding.
int main(int argc, char** argv) {
    if (argc != 2) return 2;
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0 ||
        sd_bus_add_object_vtable(bus, nullptr, "/com/kelm/stb/TR", "com.kelm.stb.TR", kTable,
                                 nullptr) < 0 ||
        sd_bus_request_name(bus, argv[1], 0) < 0 || serve(bus) < 0)
        return EXIT_FAILURE;
}
