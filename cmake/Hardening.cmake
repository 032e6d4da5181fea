# Every optimised build has checked string functions, and tables of functions that are read-only once the program has
# started. A sanitizer checks the former itself, and takes no second one.
if(NOT KELM_SANITIZE)
  add_compile_options($<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
  add_link_options($<$<CONFIG:Release>:LINKER:-z,relro,-z,now>)
endif()
