# One interface target carries the warnings, so that only our own code gets them.
add_library(kelm_warnings INTERFACE)
target_compile_options(
  kelm_warnings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wnon-virtual-dtor
            -Wformat=2
            # An `if` round one of GoogleTest's macros needs no braces: they keep their `else` to themselves.
            -Wno-dangling-else
            -Werror)
