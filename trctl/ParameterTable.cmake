# Makes ParameterTable.cpp from the rows of docs/parameters.md.in, when they change: what the document prints too.
set(KELM_PARAMETER_ROWS ${PROJECT_SOURCE_DIR}/docs/parameters.md.in)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${KELM_PARAMETER_ROWS})
file(READ ${KELM_PARAMETER_ROWS} KELM_PARAMETER_ROWS)
# A head of a table, or a row: NAME | TYPE | UNIT | SOURCE | REFRESHED | WRITTEN TO | MEANING. CMake joins what it finds by
# semicolons; one at the end of a line is such a joint.
set(kelm_cell "([^|\n]*)")
string(REGEX MATCHALL
       "\n(@[^\n]*|[^ /|\n]+ [|] [a-z]+( of [a-z]+)? [|]${kelm_cell}[|]${kelm_cell}[|]${kelm_cell}[|]${kelm_cell}[|]${kelm_cell})"
       KELM_PARAMETER_TABLE "${KELM_PARAMETER_ROWS}")
string(REPLACE ";\n" "\n" KELM_PARAMETER_TABLE "${KELM_PARAMETER_TABLE}")
# Kept are NAME|UNIT|SOURCE|MEANING, without the most frequent source.
string(REGEX REPLACE "\n([^@ |\n]+) [|][^|\n]*[|] *${kelm_cell}[|] *${kelm_cell}[|][^|\n]*[|][^|\n]*[|] *${kelm_cell}"
                     "\n\\1|\\2|\\3|\\4" KELM_PARAMETER_TABLE "${KELM_PARAMETER_TABLE}")
string(REPLACE " |" "|" KELM_PARAMETER_TABLE "${KELM_PARAMETER_TABLE}")
string(REPLACE "|constant|" "||" KELM_PARAMETER_TABLE "${KELM_PARAMETER_TABLE}")
string(REPLACE "`" "" KELM_PARAMETER_TABLE "${KELM_PARAMETER_TABLE}")
file(CONFIGURE OUTPUT ParameterTable.cpp @ONLY CONTENT [[
#include "trctl/Description.h"

const char trctl::kParameterTable[] = R"~table~(@KELM_PARAMETER_TABLE@
)~table~";
]])
