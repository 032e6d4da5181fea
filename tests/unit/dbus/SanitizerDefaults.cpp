// How the address sanitizer looks at these tests, in which the worker starts and stops many times.
//
// The binding holds two references to its connection and gives the second one back when it
// dispatches the connection's end, which its own look at a closed connection keeps it from ever
// doing. That one leak is named by its function, so that any other one of libdbus's memory still
// shows. It takes exact unwinding, as libdbus has no frame pointers.

extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}

extern "C" const char* __lsan_default_suppressions() {
    return "leak:DBus::Connection::SessionBus\n";
}
