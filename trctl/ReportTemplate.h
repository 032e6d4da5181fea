#pragma once

namespace trctl {

/// report.html, without indentation and comments; the build makes the definition from that file.
/// {{nonce}} and {{data}} differ from page to page.
extern const char kReportTemplate[];

}  // namespace trctl
