#pragma once

#include <string>

namespace cwmp {

/// The fault codes of the CWMP client that are given here.
enum class FaultCode : int {
    None = 0,
    RequestDenied = 9001,
    InternalError = 9002,
    InvalidArguments = 9003,
    InvalidName = 9005,
    InvalidValue = 9007,
    NotWritable = 9008,
    DownloadFailed = 9010,
    UploadFailed = 9011,
    FileCorrupted = 9018,
};

struct Fault {
    std::string parameter;  ///< empty when it is not about one
    FaultCode code;
};

}  // namespace cwmp
