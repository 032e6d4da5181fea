namespace TR {

/// The daemon reads no arguments, so its version is found in the program: `strings kelm-trd`.
[[gnu::used]] extern const char kVersion[] = "kelm-trd " KELM_VERSION;

}  // namespace TR
