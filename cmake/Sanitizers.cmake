# KELM_SANITIZE holds the list for -fsanitize=, for instance "address,undefined" or "thread".
set(KELM_SANITIZE "" CACHE STRING "Sanitizers for the whole build, as -fsanitize= takes them")

if(KELM_SANITIZE)
  # GCC warns of uninitialised members in instrumented standard headers that it passes without.
  add_compile_options(-fsanitize=${KELM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
                      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  add_link_options(-fsanitize=${KELM_SANITIZE})
endif()
