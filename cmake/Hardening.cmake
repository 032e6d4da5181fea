# What Debian builds its packages with, for every optimised build: checked string functions, stack guards, and tables of
# functions that are read-only once the program has started. A sanitizer does the first itself, and takes no second one.
if(NOT KELM_SANITIZE)
  add_compile_options($<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>
                      $<$<CONFIG:Release>:-fstack-protector-strong>)
  add_link_options($<$<CONFIG:Release>:LINKER:-z,relro,-z,now>)
endif()
