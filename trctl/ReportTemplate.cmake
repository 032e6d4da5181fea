# Makes ReportTemplate.cpp from report.html, when either changes.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS report.html)
file(READ report.html KELM_REPORT_TEMPLATE)
# Indentation and comments are for this repository only.
string(REGEX REPLACE "\n +" "\n" KELM_REPORT_TEMPLATE "${KELM_REPORT_TEMPLATE}")
string(REGEX REPLACE "\n// [^\n]*" "" KELM_REPORT_TEMPLATE "${KELM_REPORT_TEMPLATE}")
file(CONFIGURE OUTPUT ReportTemplate.cpp @ONLY CONTENT [[
#include "trctl/ReportTemplate.h"

const char trctl::kReportTemplate[] = R"~page~(@KELM_REPORT_TEMPLATE@)~page~";
]])
